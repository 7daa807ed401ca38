#include "io/private/NetCdf.h"

#include "io/FileError.h"

#include <algorithm>

namespace Vek::Chart::Io::Private {

namespace {

const NetCdfAttribute* Find(const std::vector<NetCdfAttribute>& p_attributes, std::string_view p_name) {
  const auto found = std::find_if(p_attributes.begin(), p_attributes.end(),
                                  [&](const NetCdfAttribute& p_attribute) { return p_attribute.name == p_name; });
  return found == p_attributes.end() ? nullptr : &*found;
}

} // namespace

const std::string& NetCdfVariable::Text(std::string_view p_attribute) const {
  static const std::string None;
  const NetCdfAttribute* const found = Private::Find(attributes, p_attribute);
  return found == nullptr ? None : found->text;
}

const std::vector<double>& NetCdfVariable::Numbers(std::string_view p_attribute) const {
  static const std::vector<double> None;
  const NetCdfAttribute* const found = Private::Find(attributes, p_attribute);
  return found == nullptr ? None : found->numbers;
}

NetCdfType NetCdfVariable::Type(std::string_view p_attribute) const {
  const NetCdfAttribute* const found = Private::Find(attributes, p_attribute);
  return found == nullptr ? NetCdfType::Unknown : found->type;
}

const NetCdfVariable* NetCdfFile::Find(std::string_view p_variable) const {
  const auto found = std::find_if(_variables.begin(), _variables.end(),
                                  [&](const NetCdfVariable& p_row) { return p_row.name == p_variable; });
  return found == _variables.end() ? nullptr : &*found;
}

std::size_t NetCdfFile::CheckSize(const NetCdfVariable& p_variable, std::size_t p_count, std::size_t p_further) const {
  constexpr std::size_t Most = std::size_t(1) << 40;
  const bool fits = p_further <= Most / std::max<std::size_t>(p_count, 1);
  if (!fits || !HasRoom(p_variable, p_count * p_further))
    throw FileError(_name, "variable \"" + p_variable.name + "\": claims more values than the file contains");
  return p_count * p_further;
}

std::vector<double> NetCdfFile::Read(const NetCdfVariable& p_variable, const std::vector<std::size_t>& p_first,
                                     const std::vector<std::size_t>& p_count, const Progress& p_progress) const {
  if (p_variable.type == NetCdfType::Unknown || p_variable.type == NetCdfType::Char)
    throw FileError(_name, "variable \"" + p_variable.name + "\": expected numbers, got another type");
  std::size_t size = CheckSize(p_variable, 1, 1);
  for (std::size_t i = 0; i < p_variable.dimensions.size(); ++i) {
    const NetCdfDimension& dimension = _dimensions[p_variable.dimensions[i]];
    if (p_first[i] > dimension.size || p_count[i] > dimension.size - p_first[i])
      throw FileError(_name, "dimension \"" + dimension.name + "\": expected an index below " +
                                 std::to_string(dimension.size) + ", got " +
                                 std::to_string(p_first[i] + p_count[i] - 1));
    size = CheckSize(p_variable, size, p_count[i]);
  }
  std::vector<double> values(size);
  if (size != 0)
    ReadBlock(std::size_t(&p_variable - _variables.data()), p_first, p_count, values, p_progress);
  return values;
}

std::vector<double> NetCdfFile::Read(const NetCdfVariable& p_variable) const {
  std::vector<std::size_t> first(p_variable.dimensions.size(), 0), count;
  for (const std::size_t dimension : p_variable.dimensions)
    count.push_back(_dimensions[dimension].size);
  return Read(p_variable, first, count);
}

bool IsClassicNetCdf(std::string_view p_start) {
  return p_start.size() >= 4 && p_start.substr(0, 3) == "CDF" &&
         (p_start[3] == 1 || p_start[3] == 2 || p_start[3] == 5);
}

bool IsHdf5(std::string_view p_start) {
  return p_start.substr(0, 8) == "\x89HDF\r\n\x1A\n";
}

std::unique_ptr<NetCdfFile> OpenNetCdf(std::istream& p_stream, const std::string& p_name, bool p_inParts) {
  std::string start(8, '\0');
  const std::istream::pos_type at = p_stream.tellg();
  p_stream.read(start.data(), std::streamsize(start.size()));
  start.resize(std::size_t(p_stream.gcount()));
  p_stream.clear();
  p_stream.seekg(at);
  const auto* const file =
      p_inParts && at == std::istream::pos_type(0) ? dynamic_cast<FileStream*>(&p_stream) : nullptr;
  if (IsHdf5(start))
    return OpenNetCdf4(p_stream, p_name, file != nullptr ? file->path : std::string());
  return OpenClassicNetCdf(p_stream, p_name);
}

} // namespace Vek::Chart::Io::Private
