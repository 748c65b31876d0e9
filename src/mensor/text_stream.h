// text_stream.h: the stream in which messages and notations are composed. For the library's own use;
// not installed.
#ifndef MENSOR_TEXT_STREAM_H
#define MENSOR_TEXT_STREAM_H

#include "mensor/mensor_global.h"

namespace mensor {
namespace detail {

// A stream keeps to itself that memory ran out and drops what it is given, so that a message would be
// cut short. This one throws.
class CTextStream : public stringstream_t {
public:
    CTextStream() { exceptions(badbit); }
};

}  // namespace detail
}  // namespace mensor

#endif  // MENSOR_TEXT_STREAM_H
