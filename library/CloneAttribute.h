#pragma once

#include "library/Export.h"
#include "platform/interface/ISupportedInterface.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library {

/// Returns a copy of vertex data that is independent of its source and offers the same interface.
///
/// The source is queried for DataInterface::VertexAttribute1, VertexAttribute1B, VertexAttribute2, VertexAttribute3,
/// VertexAttribute4 and VertexIndex, in this order, and cloned as the first that it supports. Float attributes keep
/// quantity and unit where the source supports DataInterface::QuantityUnit. Scalars are stored as float, byte and
/// unsigned int. Elements that the source does not write are 0; elements beyond its Count() are reported and dropped.
///
/// The clone never changes; it is safe to read from several threads. Its `Write` passes all scalars in one call. Its
/// raw accessors are reported and return an empty array.
///
/// A source without any of the interfaces, or a null one, is reported, and the result is empty. Every clone is
/// described on the debug channel "DataRepository". Exceptions of the source and std::bad_alloc pass through.
///
/// \snippet DataSnippets.cpp CloneAttribute
/// \ingroup data
VEK_LIBRARY_API boost::shared_ptr<SupportedInterface::ISupportedInterface>
CloneAttribute(const boost::shared_ptr<SupportedInterface::ISupportedInterface>& p_source);

} // namespace Vek::Chart::Library
