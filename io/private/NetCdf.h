#pragma once

#include "io/private/Input.h"

#include <cstddef>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io::Private {

/// Types of values, with their numbers in files. Others, such as strings and structures, are not read.
enum class NetCdfType : int {
  Byte = 1,
  Char,
  Short,
  Int,
  Float,
  Double,
  UByte,
  UShort,
  UInt,
  Int64,
  UInt64,
  Unknown,
};

/// An attribute: a string, or numbers.
struct NetCdfAttribute {
  std::string name;
  NetCdfType type = NetCdfType::Unknown;
  std::string text;
  std::vector<double> numbers;
};

struct NetCdfDimension {
  std::string name;
  std::size_t size = 0;
};

struct NetCdfVariable {
  std::string name;
  NetCdfType type = NetCdfType::Unknown;
  std::vector<std::size_t> dimensions; ///< indices in the list of the file; the last one varies fastest
  std::vector<NetCdfAttribute> attributes;

  /// The string of an attribute; empty where it does not exist or has numbers.
  const std::string& Text(std::string_view p_attribute) const;
  /// The numbers of an attribute; empty where it does not exist or is a string.
  const std::vector<double>& Numbers(std::string_view p_attribute) const;
  /// The type of an attribute; Unknown where it does not exist.
  NetCdfType Type(std::string_view p_attribute) const;
};

/// The dimensions and variables of a NetCDF file, and their values on request.
class NetCdfFile {
public:
  virtual ~NetCdfFile() = default;

  const std::string& Name() const { return _name; }
  const std::vector<NetCdfDimension>& Dimensions() const { return _dimensions; }
  const std::vector<NetCdfVariable>& Variables() const { return _variables; }
  const NetCdfVariable* Find(std::string_view p_variable) const;

  /// The values of a block of a variable, as they are stored, with the last dimension fastest; one first index and one
  /// count for each dimension. Throws FileError for a block that the file does not contain.
  std::vector<double> Read(const NetCdfVariable& p_variable, const std::vector<std::size_t>& p_first,
                           const std::vector<std::size_t>& p_count, const Progress& p_progress = {}) const;
  /// All values of a variable.
  std::vector<double> Read(const NetCdfVariable& p_variable) const;

  /// The product of two counts of values. Throws FileError if the file is too short for so many values of a variable.
  std::size_t CheckSize(const NetCdfVariable& p_variable, std::size_t p_count, std::size_t p_further) const;

protected:
  explicit NetCdfFile(std::string p_name)
      : _name(std::move(p_name)) {}
  /// Reads `p_values.size()` values, which are those of the block. The block is within the dimensions.
  virtual void ReadBlock(std::size_t p_variable, const std::vector<std::size_t>& p_first,
                         const std::vector<std::size_t>& p_count, std::vector<double>& p_values,
                         const Progress& p_progress) const = 0;
  /// Whether the file is long enough for that many values of a variable, and for all that it claims.
  virtual bool HasRoom(const NetCdfVariable& p_variable, std::size_t p_values) const = 0;

  std::string _name;
  std::vector<NetCdfDimension> _dimensions;
  std::vector<NetCdfVariable> _variables;
};

/// Whether a file starts as one of the three classic formats, or as HDF5, of which NetCDF-4 is a kind.
bool IsClassicNetCdf(std::string_view p_start);
bool IsHdf5(std::string_view p_start);

/// Opens a file of those formats. The stream must be one that seeks, and outlive the file. With `p_inParts`, NetCDF-4
/// files that OpenFile has opened are not taken into memory as a whole. Throws FileError.
std::unique_ptr<NetCdfFile> OpenNetCdf(std::istream& p_stream, const std::string& p_name, bool p_inParts = false);
std::unique_ptr<NetCdfFile> OpenClassicNetCdf(std::istream& p_stream, const std::string& p_name);
std::unique_ptr<NetCdfFile> OpenNetCdf4(std::istream& p_stream, const std::string& p_name, const std::string& p_path);

} // namespace Vek::Chart::Io::Private
