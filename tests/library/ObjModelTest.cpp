#include "library/ObjModel.h"
#include "tests/support/Test.h"

TEST(ObjModel, StartsUndecidedWithAnEmptyDefaultGroup) {
  ObjModel model;
  EXPECT_EQ(model.PrimitiveType(), 8);
  EXPECT_TRUE(model.Vertices()->empty() && model.Normals()->empty() && model.Bounds().Empty());
  EXPECT_NE(model.Vertices(), model.Normals());
  const auto first = model.DefaultGroup();
  EXPECT_TRUE(first->name.empty() && first->indices.empty());
  const auto second = model.AddGroup();
  EXPECT_EQ(*model.Groups(), (ObjModel::GroupList{first, second}));
  EXPECT_EQ(model.DefaultGroup(), first);
  model.Groups()->clear();
  EXPECT_EQ(model.DefaultGroup(), nullptr);
}

TEST(ObjModel, CopiesShareArraysAndGroupsButNotTypeAndBounds) {
  ObjModel source, assigned;
  source.SetPrimitiveType(Ogl::VertexBuffer::Triangles);
  source.SetBoundingBox({{0, 0, 0}, {1, 2, 3}});
  assigned = source;
  const ObjModel copy(source);
  source.AddGroup();
  source.SetPrimitiveType(Ogl::VertexBuffer::LineSegments);
  source.SetBoundingBox({});
  source.SetVertices(boost::make_shared<ObjModel::VertexArray>(2));
  source.SetNormals(boost::make_shared<ObjModel::VertexArray>(2));
  for (const ObjModel* model : {&copy, static_cast<const ObjModel*>(&assigned)}) {
    EXPECT_EQ(model->Groups(), source.Groups());
    EXPECT_TRUE(model->Vertices() == copy.Vertices() && model->Vertices()->empty());
    EXPECT_TRUE(model->Normals() == copy.Normals() && model->Normals()->empty());
    EXPECT_EQ(model->PrimitiveType(), Ogl::VertexBuffer::Triangles);
    EXPECT_FALSE(model->Bounds().Empty());
  }
}
