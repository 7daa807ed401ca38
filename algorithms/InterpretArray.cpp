#include "algorithms/InterpretArray.h"

namespace Vek::Chart::DataInterface {

template class Array<bool, 0>;
template class Array<unsigned char, 0>;
template class Array<unsigned short, 0>;
template class Array<unsigned int, 0>;
template class Array<float, 0>;
template class Array<double, 0>;
template class Array<Ogl::Attribute<Ogl::Vec3<float>>, 2>;
template class Array<Ogl::Attribute<Ogl::Vec1<unsigned int>>, 2>;

} // namespace Vek::Chart::DataInterface

namespace Vek::Chart::Algorithms {

namespace {

template <class S, class U>
inline void Convert(const S* __restrict p_source, const std::uint64_t p_count, U* __restrict p_dest) {
  for (std::uint64_t i = 0; i < p_count; ++i)
    p_dest[i] = static_cast<U>(p_source[i]);
}

} // namespace

// In the caches, vectors of 32 bytes are as fast as a plain copy; those of 16 bytes are not.
#if defined(__x86_64__) && defined(__GLIBC__)
#define VEK_WIDE __attribute__((target_clones("avx2", "default")))
#else
#define VEK_WIDE
#endif

VEK_WIDE void ConvertScalars(const double* p_source, const std::uint64_t p_count, float* p_dest) {
  Convert(p_source, p_count, p_dest);
}

VEK_WIDE void ConvertScalars(const unsigned char* p_source, const std::uint64_t p_count, unsigned int* p_dest) {
  Convert(p_source, p_count, p_dest);
}

VEK_WIDE void ConvertScalars(const unsigned short* p_source, const std::uint64_t p_count, unsigned int* p_dest) {
  Convert(p_source, p_count, p_dest);
}

#define VEK_TO_VECTOR(S, U, N)                                                                                         \
  template class InterpretedArrayConverter<S, boost::array<U, N>>;                                                     \
  template VEK_ALGORITHMS_API void                                                                                     \
  InterpretArray<DataInterface::Array<S, 0>, DataInterface::Array<S, 0>>::CopyArrayToWithOffset<boost::array<U, N>>(   \
      const DataInterface::Array<S, 0>&, std::vector<boost::array<U, N>>&, std::uint64_t);
#define VEK_TO_BUFFER(S, D)                                                                                            \
  template class InterpretedArrayConverter<S, Ogl::D>;                                                                 \
  template VEK_ALGORITHMS_API void                                                                                     \
  InterpretArray<DataInterface::Array<S, 0>, DataInterface::Array<S, 0>>::CopyArrayToWithOffset<Ogl::D>(               \
      const DataInterface::Array<S, 0>&, Ogl::BufferPool::WriteArray<Ogl::Attribute<Ogl::D>>&, std::uint64_t);
VEK_INTERPRET_ARRAY_INSTANCES(VEK_TO_VECTOR, VEK_TO_BUFFER)

} // namespace Vek::Chart::Algorithms
