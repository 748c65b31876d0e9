// sentences.h: the sentences of refusals of form, from refusals.def. For the library's own use; not
// installed.
#ifndef MENSOR_EXACT_SENTENCES_H
#define MENSOR_EXACT_SENTENCES_H

namespace mensor::exact::sentences {

#define MENSOR_SENTENCE(name, sentence) inline constexpr const char* name = sentence;
#include "mensor_exact/refusals.def"

}  // namespace mensor::exact::sentences

#endif  // MENSOR_EXACT_SENTENCES_H
