#include "io/private/TextValues.h"

namespace Vek::Chart::Io::Private {

bool TextPieces::Next(TextPiece& p_piece) {
  if (!p_piece.bytes)
    p_piece.bytes.reset(new char[TextPiece::Most]);
  char* const bytes = p_piece.bytes.get();
  std::copy(_rest.begin(), _rest.end(), bytes);
  p_piece.size = _rest.size() + _source.Read(bytes + _rest.size(), TextPiece::Most - _rest.size());
  _rest.clear();
  if (p_piece.size < TextPiece::Most) // the end
    return p_piece.size != 0;
  std::size_t end = p_piece.size;
  while (end != 0 && !IsSeparator(bytes[end - 1]))
    --end;
  if (end == 0)
    return true; // one long word
  _rest.assign(bytes + end, p_piece.size - end);
  p_piece.size = end;
  return true;
}

} // namespace Vek::Chart::Io::Private
