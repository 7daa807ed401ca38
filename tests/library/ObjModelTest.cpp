#include "library/ObjModel.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

using namespace Vek::Chart;
using Library::ObjModel;

TEST(ObjModel, StartsUndecidedWithOneEmptyDefaultGroup) {
  const ObjModel model;
  EXPECT_EQ(model.PrimitiveType(), 8);
  ASSERT_EQ(model.Groups()->size(), 1u);
  EXPECT_EQ(model.DefaultGroup(), model.Groups()->front());
  EXPECT_EQ(model.DefaultGroup()->name, "");
  EXPECT_TRUE(model.DefaultGroup()->indices.empty());
  EXPECT_TRUE(model.Vertices()->empty());
  EXPECT_TRUE(model.Normals()->empty());
  EXPECT_NE(model.Vertices(), model.Normals());
  EXPECT_TRUE(model.Bounds().Empty());
}

TEST(ObjModel, AppendsGroupsBehindTheDefaultGroup) {
  ObjModel model;
  const auto first = model.DefaultGroup();
  const auto second = model.AddGroup();
  EXPECT_EQ(*model.Groups(), (ObjModel::GroupList{first, second}));
  EXPECT_EQ(model.DefaultGroup(), first);
  EXPECT_EQ(second->name, "");
  model.Groups()->clear();
  EXPECT_EQ(model.DefaultGroup(), nullptr);
}

TEST(ObjModel, CopiesShareArraysAndGroupsButNotTypeAndBounds) {
  ObjModel source;
  source.SetPrimitiveType(Ogl::VertexBuffer::Triangles);
  source.SetBoundingBox({{0, 0, 0}, {1, 2, 3}});
  const ObjModel copy(source);
  ObjModel assigned;
  assigned = source;
  for (const ObjModel* model : {&copy, static_cast<const ObjModel*>(&assigned)}) {
    EXPECT_EQ(model->Groups(), source.Groups());
    EXPECT_EQ(model->Vertices(), source.Vertices());
    EXPECT_EQ(model->Normals(), source.Normals());
    EXPECT_EQ(model->PrimitiveType(), Ogl::VertexBuffer::Triangles);
    EXPECT_EQ(model->Bounds(), source.Bounds());
  }
  source.AddGroup();
  source.SetPrimitiveType(Ogl::VertexBuffer::LineSegments);
  source.SetBoundingBox({});
  EXPECT_EQ(copy.Groups()->size(), 2u);
  EXPECT_EQ(copy.PrimitiveType(), Ogl::VertexBuffer::Triangles);
  EXPECT_FALSE(copy.Bounds().Empty());
}

TEST(ObjModel, TakesOtherArrays) {
  ObjModel model;
  const ObjModel copy(model);
  const auto vertices = boost::make_shared<ObjModel::VertexArray>(2);
  const auto normals = boost::make_shared<ObjModel::VertexArray>(2);
  model.SetVertices(vertices);
  model.SetNormals(normals);
  EXPECT_EQ(model.Vertices(), vertices);
  EXPECT_EQ(model.Normals(), normals);
  EXPECT_TRUE(copy.Vertices()->empty());
}
