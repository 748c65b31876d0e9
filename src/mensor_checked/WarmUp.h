// WarmUp.h: start-up for programs with threads, and the lock rule of the companion.
//
//     checked::warmUp({"km/h", "W/(m²·K)", "N·m"});            // on one thread, before the others
//
// The lock rule. The library has two kinds of locks and takes them in both orders (Unit.h): the
// algebra locks a unit and then CUnit::mutex(); asking for a dimension locks CUnit::mutex() and then
// units. Two threads that do first-time algebra and first-time conversions of the same units can wait
// for each other for ever.
//
// Every function of the companion that asks the library anything holds CUnit::mutex() from its first
// question to its last. It is recursive and comes first everywhere, so whatever two threads read,
// make, write and convert through the companion, one of them waits for the other to finish, and
// never the other way round.
//
// A program that also calls the library's own algebra or parser from other threads has two ways to
// stay within the rule: hold CUnit::mutex() around those calls, or let warmUp() do all first-time work
// before the threads start: what has been read once is then found in the caches of the library
// without locking any unit while CUnit::mutex() is held. Algebra that makes what warmUp() has not made
// needs the mutex all the same, as long as another thread has a first time before it.
#ifndef MENSOR_CHECKED_WARMUP_H
#define MENSOR_CHECKED_WARMUP_H

#include <string>
#include <vector>

#include "mensor_checked/Audit.h"
#include "mensor_checked/Reading.h"
#include "mensor_checked/checked_export.h"

namespace mensor {
namespace checked {

/// Does on this thread all lazy work for every unit with a label, an alias or a symbol, and for the
/// given texts, so that afterwards reading, converting and writing these never takes a first-time
/// path. Gives the texts that are refused, as audit does.
///
/// Idempotent. A client that registers units, or changes a base unit's dimension, calls it again.
/// @par Threads  Any thread, locks CUnit::mutex() for all its work.
MENSOR_CHECKED_API std::vector<CFinding> warmUp(const std::vector<std::string>& texts = {},
                                                const CReadOptions& options = {});

}  // namespace checked
}  // namespace mensor

#endif  // MENSOR_CHECKED_WARMUP_H
