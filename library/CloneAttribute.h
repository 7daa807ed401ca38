#pragma once

#include "library/Export.h"
#include "platform/interface/ISupportedInterface.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library {

/// Copies vertex data of any source into an object of its own, which offers the same interface over the copy.
///
/// The source is asked for DataInterface::VertexAttribute1, VertexAttribute1B, VertexAttribute2, VertexAttribute3,
/// VertexAttribute4 and VertexIndex, in this order, and cloned as the first that it offers. Float attributes keep their
/// quantity and unit, when the source tells them. Numbers are kept as float, byte and unsigned int, value by value as
/// the source writes them.
///
/// The clone never changes and may be read from several threads. It serves its data through `Write` only, and hands
/// over the number of scalars in one call; its raw accessors report and yield an empty array.
///
/// A source that offers none of the interfaces, or no source, is reported, and the result is empty. Every clone is
/// described on the debug channel "DataRepository". Exceptions of the source and of the allocation pass through.
///
/// \snippet DataSnippets.cpp CloneAttribute
/// \ingroup data
VEK_LIBRARY_API boost::shared_ptr<SupportedInterface::ISupportedInterface>
CloneAttribute(const boost::shared_ptr<SupportedInterface::ISupportedInterface>& p_source);

} // namespace Vek::Chart::Library
