// TextStream.h: the stream that composes messages and notations. Not installed.
#ifndef MENSOR_TEXTSTREAM_H
#define MENSOR_TEXTSTREAM_H

#include "mensor/mensor_global.h"

namespace mensor::detail {

// A standard stream swallows std::bad_alloc and drops output. This one throws.
class CTextStream : public stringstream_t {
public:
    CTextStream() { exceptions(badbit); }
};

}  // namespace mensor::detail

#endif  // MENSOR_TEXTSTREAM_H
