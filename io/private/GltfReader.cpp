// glTF 2.0 ("glTF 2.0 Specification", Khronos Group, 2021) by Assimp, of which no other reader is used.

#include "io/private/MeshFormats.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Input.h"

#if VEK_WITH_ASSIMP

#include <assimp/BaseImporter.h>
#include <assimp/GltfMaterial.h>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/MemoryIOWrapper.h>
#include <assimp/importerdesc.h>
#include <assimp/scene.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::size_t GlbHeaderSize = 12, ChunkHeaderSize = 8;

/// The JSON of a file. In a binary one all chunks must lie within the file: Assimp takes memory for what they claim.
std::string_view JsonOf(std::string_view p_file, const std::string& p_name) {
  if (p_file.substr(0, 4) != "glTF")
    return p_file;
  if (p_file.size() < GlbHeaderSize + ChunkHeaderSize || LoadLittle<std::uint32_t>(p_file.substr(4)) != 2)
    throw FileError(p_name, "expected binary glTF of version 2, got another version");
  std::string_view json;
  for (std::size_t at = GlbHeaderSize; at + ChunkHeaderSize <= p_file.size();) {
    const std::size_t size = LoadLittle<std::uint32_t>(p_file.substr(at)), left = p_file.size() - at - ChunkHeaderSize;
    if (size > left)
      throw FileError(p_name, "byte " + std::to_string(at) + ": expected a chunk of " + std::to_string(size) +
                                  " bytes, got " + std::to_string(left));
    if (json.empty())
      json = p_file.substr(at + ChunkHeaderSize, size);
    at += ChunkHeaderSize + size;
  }
  return json;
}

/// Nodes must form trees of sensible depth: Assimp follows them by recursion.
void CheckNodes(const QJsonArray& p_nodes, const std::string& p_name) {
  constexpr int Deepest = 256;
  std::vector<int> parents(std::size_t(p_nodes.size()), -1);
  for (int i = 0; i < p_nodes.size(); ++i)
    for (const QJsonValue child : p_nodes[i].toObject()["children"].toArray()) {
      const int index = child.toInt(-1);
      if (index < 0 || index >= p_nodes.size() || parents[std::size_t(index)] >= 0)
        throw FileError(p_name, "node " + std::to_string(i) + ": expected children that are nodes of one parent, got " +
                                    std::to_string(index));
      parents[std::size_t(index)] = i;
    }
  for (std::size_t i = 0; i < parents.size(); ++i) {
    int depth = 0;
    for (int node = int(i); node >= 0; node = parents[std::size_t(node)])
      if (++depth > Deepest)
        throw FileError(p_name, "expected at most 256 levels of nodes, got a cycle or more");
  }
}

/// Refuses what Assimp cannot be given: needed extensions that it lacks, sizes beyond the file, deep nodes.
void CheckJson(std::string_view p_json, const std::string& p_name) {
  QJsonParseError error;
  const QJsonDocument document =
      QJsonDocument::fromJson(QByteArray::fromRawData(p_json.data(), int(p_json.size())), &error);
  if (!document.isObject())
    throw FileError(p_name,
                    "byte " + std::to_string(error.offset) + " of the JSON: " + error.errorString().toStdString());
  const QJsonObject root = document.object();
  if (!root["asset"].toObject()["version"].toString().startsWith("2."))
    throw FileError(p_name, "expected glTF of version 2, got \"" +
                                root["asset"].toObject()["version"].toString().toStdString() + '"');
  for (const QJsonValue extension : root["extensionsRequired"].toArray())
    if (const QString name = extension.toString(); !name.startsWith("KHR_materials_") && name != "KHR_lights_punctual")
      throw FileError(p_name, "needs the extension \"" + name.toStdString() + "\", which is not read");
  double bytes = double(p_json.size());
  for (const QJsonValue buffer : root["buffers"].toArray())
    bytes += buffer.toObject()["byteLength"].toDouble();
  for (const QJsonValue accessor : root["accessors"].toArray())
    if (const double count = accessor.toObject()["count"].toDouble(); !(count >= 0 && count <= bytes))
      throw FileError(p_name,
                      "expected accessors within the buffers, got one of " + std::to_string(count) + " elements");
  CheckNodes(root["nodes"].toArray(), p_name);
}

/// The file itself, from memory, and those beside it.
class Files : public Assimp::IOSystem {
public:
  Files(std::string_view p_file, std::string p_assimpName, const std::string& p_name)
      : _file(p_file)
      , _assimpName(std::move(p_assimpName))
      , _folder(std::filesystem::path(p_name).parent_path()) {}

  bool Exists(const char* p_file) const override {
    std::error_code ignored;
    return p_file == _assimpName || std::filesystem::is_regular_file(_folder / p_file, ignored);
  }
  char getOsSeparator() const override { return '/'; }
  Assimp::IOStream* Open(const char* p_file, const char*) override {
    if (p_file == _assimpName)
      return new Assimp::MemoryIOStream(reinterpret_cast<const std::uint8_t*>(_file.data()), _file.size());
    try {
      const std::string path = (_folder / p_file).string();
      std::ifstream stream = OpenFile(path);
      const std::string bytes = ReadAll(stream, path);
      auto copy = std::make_unique<std::uint8_t[]>(bytes.size());
      std::copy(bytes.begin(), bytes.end(), copy.get());
      return new Assimp::MemoryIOStream(copy.release(), bytes.size(), true);
    } catch (const FileError&) { // which Assimp reports by the null pointer
      return nullptr;
    }
  }
  void Close(Assimp::IOStream* p_file) override { delete p_file; }

private:
  std::string_view _file;
  std::string _assimpName;
  std::filesystem::path _folder;
};

/// Leaves no reader but that of glTF 2.
void KeepGltf(Assimp::Importer& p_importer) {
  for (std::size_t i = p_importer.GetImporterCount(); i-- > 0;) {
    Assimp::BaseImporter* const reader = p_importer.GetImporter(i);
    if (reader == nullptr || std::string_view(p_importer.GetImporterInfo(i)->mName) == "glTF2 Importer")
      continue;
    p_importer.UnregisterLoader(reader);
    delete reader;
  }
}

/// Collects the meshes of a scene.
class Collector {
public:
  Collector(const aiScene& p_scene, std::size_t p_fileSize, const std::string& p_name, const Progress& p_progress)
      : _scene(p_scene)
      , _mostVertices((std::size_t(16000000) + 64 * p_fileSize) / 128)
      , _name(p_name)
      , _progress(p_progress) {}

  Mesh Collect() {
    for (unsigned i = 0; i < _scene.mNumMaterials; ++i)
      _mesh.materials.push_back(Material(*_scene.mMaterials[i]));
    if (_scene.mRootNode != nullptr)
      AddNode(*_scene.mRootNode, aiMatrix4x4());
    if (_mesh.positions.empty())
      throw FileError(_name, "expected a mesh, got none");
    if (!_hasColors)
      _mesh.colors.clear();
    if (!_hasTexCoords)
      _mesh.texCoords.clear();
    CompleteNormals();
    return std::move(_mesh);
  }

private:
  Mesh::Material Material(const aiMaterial& p_material) const {
    Mesh::Material material;
    aiString text;
    if (p_material.Get(AI_MATKEY_NAME, text) == aiReturn_SUCCESS)
      material.name = text.C_Str();
    aiColor4D color(1, 1, 1, 1);
    p_material.Get(AI_MATKEY_BASE_COLOR, color);
    material.diffuse = {color.r, color.g, color.b};
    material.opacity = color.a;
    aiColor3D emission(0, 0, 0);
    p_material.Get(AI_MATKEY_COLOR_EMISSIVE, emission);
    material.emission = {emission.r, emission.g, emission.b};
    if (p_material.GetTexture(AI_MATKEY_BASE_COLOR_TEXTURE, &text) == aiReturn_SUCCESS)
      FindTexture(text.C_Str(), material);
    if (aiUVTransform transform; p_material.Get(AI_MATKEY_UVTRANSFORM_DIFFUSE(0), transform) == aiReturn_SUCCESS)
      _mesh.warnings.push_back(_name + ": the texture transform of material \"" + material.name.substr(0, 255) +
                               "\" is not read");
    return material;
  }

  void FindTexture(const std::string& p_path, Mesh::Material& p_material) const {
    if (const aiTexture* const texture = _scene.GetEmbeddedTexture(p_path.c_str());
        texture != nullptr && texture->mHeight == 0) { // encoded: the width is the number of bytes
      const auto* const bytes = reinterpret_cast<const std::uint8_t*>(texture->pcData);
      p_material.diffuseImage.assign(bytes, bytes + texture->mWidth);
      return;
    }
    std::error_code ignored;
    const std::filesystem::path path = std::filesystem::path(_name).parent_path() / p_path;
    if (std::filesystem::is_regular_file(path, ignored))
      p_material.diffuseTexture = path.string();
    else
      _mesh.warnings.push_back(_name + ": the texture " + p_path.substr(0, 255) + " is missing");
  }

  void AddNode(const aiNode& p_node, const aiMatrix4x4& p_parent) { // the depth is bounded by CheckNodes
    const aiMatrix4x4 transform = p_parent * p_node.mTransformation;
    for (unsigned i = 0; i < p_node.mNumMeshes; ++i)
      AddMesh(*_scene.mMeshes[p_node.mMeshes[i]], transform, p_node.mName.C_Str());
    for (unsigned i = 0; i < p_node.mNumChildren; ++i)
      AddNode(*p_node.mChildren[i], transform);
  }

  void AddMesh(const aiMesh& p_mesh, const aiMatrix4x4& p_transform, const std::string& p_node) {
    const std::size_t first = _mesh.positions.size() / 3;
    if (p_mesh.mNumVertices > _mostVertices - first)
      throw FileError(_name, "expected nodes that repeat meshes within 64 times the file, got more");
    aiMatrix3x3 turn(p_transform);
    const bool isMirrored = turn.Determinant() < 0;
    turn.Inverse().Transpose(); // of normals
    for (unsigned i = 0; i < p_mesh.mNumVertices; ++i) {
      const aiVector3D position = p_transform * p_mesh.mVertices[i];
      _mesh.positions.insert(_mesh.positions.end(), {position.x, position.y, position.z});
      aiVector3D normal; // zero for one to be computed
      if (p_mesh.HasNormals())
        normal = (turn * p_mesh.mNormals[i]).NormalizeSafe();
      _mesh.normals.insert(_mesh.normals.end(), {normal.x, normal.y, normal.z});
      const aiVector3D texCoord = p_mesh.HasTextureCoords(0) ? p_mesh.mTextureCoords[0][i] : aiVector3D();
      _mesh.texCoords.insert(_mesh.texCoords.end(), {texCoord.x, texCoord.y});
      const aiColor4D color = p_mesh.HasVertexColors(0) ? p_mesh.mColors[0][i] : aiColor4D(1, 1, 1, 1);
      _mesh.colors.insert(_mesh.colors.end(), {color.r, color.g, color.b, color.a});
    }
    _hasColors |= p_mesh.HasVertexColors(0);
    _hasTexCoords |= p_mesh.HasTextureCoords(0);
    AddFaces(p_mesh, first, isMirrored, p_node);
    ++_added; // one mesh may be added several times
    Report(_progress, _name, 0.5 + 0.5 * double(_added) / double(_added + _scene.mNumMeshes));
  }

  void AddFaces(const aiMesh& p_mesh, std::size_t p_first, bool p_isMirrored, const std::string& p_node) {
    for (const unsigned corners : {3u, 2u, 1u}) {
      Mesh::Group group;
      group.name = p_mesh.mName.C_Str();
      group.object = p_node;
      group.name.resize(std::min<std::size_t>(group.name.size(), 255));
      group.object.resize(std::min<std::size_t>(group.object.size(), 255));
      group.material = p_mesh.mMaterialIndex < _scene.mNumMaterials ? int(p_mesh.mMaterialIndex) : -1;
      group.primitive = corners == 3 ? Mesh::Triangles : corners == 2 ? Mesh::Lines : Mesh::Points;
      group.first = _mesh.indices.size();
      for (unsigned i = 0; i < p_mesh.mNumFaces; ++i) {
        const aiFace& face = p_mesh.mFaces[i];
        if (face.mNumIndices != corners)
          continue;
        for (unsigned corner = 0; corner < corners; ++corner) {
          const unsigned index = face.mIndices[p_isMirrored ? corners - 1 - corner : corner];
          if (index >= p_mesh.mNumVertices)
            throw FileError(_name, "expected a vertex below " + std::to_string(p_mesh.mNumVertices) + ", got " +
                                       std::to_string(index));
          _mesh.indices.push_back(std::uint32_t(p_first + index));
        }
      }
      group.count = _mesh.indices.size() - group.first;
      if (group.count != 0)
        _mesh.groups.push_back(std::move(group));
    }
  }

  /// Computes the normals of vertices without one.
  void CompleteNormals() {
    const std::vector<float> given = std::move(_mesh.normals);
    _mesh.normals.clear();
    AddNormals(_mesh);
    for (std::size_t i = 0; i < _mesh.normals.size(); i += 3)
      if (given[i] != 0 || given[i + 1] != 0 || given[i + 2] != 0)
        std::copy_n(given.begin() + std::ptrdiff_t(i), 3, _mesh.normals.begin() + std::ptrdiff_t(i));
  }

  const aiScene& _scene;
  std::size_t _mostVertices; // of 128 bytes each, Assimp's copy included
  const std::string& _name;
  const Progress& _progress;
  mutable Mesh _mesh; // whose warnings grow
  bool _hasColors = false;
  bool _hasTexCoords = false;
  std::size_t _added = 0;
};

} // namespace

Mesh ReadGltf(std::string_view p_file, const std::string& p_name, const Progress& p_progress) {
  CheckJson(JsonOf(p_file, p_name), p_name);
  Report(p_progress, p_name, 0);
  Assimp::Importer importer;
  KeepGltf(importer);
  // Assimp tells the kinds of glTF apart by this name alone.
  const std::string name = p_file.substr(0, 4) == "glTF" ? "vek-file.glb" : "vek-file.gltf";
  importer.SetIOHandler(new Files(p_file, name, p_name)); // which the importer owns
  const aiScene* const scene = importer.ReadFile(name, 0);
  if (scene == nullptr)
    throw FileError(p_name, std::string("not a sound glTF file: ") + importer.GetErrorString());
  Report(p_progress, p_name, 0.5);
  Mesh mesh = Collector(*scene, p_file.size(), p_name, p_progress).Collect();
  Report(p_progress, p_name, 1);
  return mesh;
}

} // namespace Vek::Chart::Io::Private

#else

namespace Vek::Chart::Io::Private {

Mesh ReadGltf(std::string_view, const std::string& p_name, const Progress&) {
  FailWithout("glTF", p_name);
}

} // namespace Vek::Chart::Io::Private

#endif

namespace Vek::Chart::Io::Private {

bool IsGltf(std::string_view p_start) {
  if (p_start.substr(0, 4) == "glTF")
    return true;
  const std::size_t first = p_start.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  return first != std::string_view::npos && p_start[first] == '{';
}

} // namespace Vek::Chart::Io::Private
