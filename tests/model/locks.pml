/* locks.pml: a model of the locks of the algebra and of dimensions, for spin. Three threads do two operations
 * each. spin tries all interleavings: no thread waits for ever, and each cache entry is filled once.
 *
 * scripts/check runs the model twice. As it is, spin must find no fault. With -DOLD_ORDER, the lock of a unit is
 * held while the lock of the process is taken, and spin must find the deadlock.
 *
 * The lines after "//=" are quoted from src/mensor/Unit.cpp and src/mensor/UnitAlgebra.h. scripts/check compares
 * them. If you change them there, change the model, too.
 *
 *     spin -a locks.pml && cc -DSAFETY -o pan pan.c && ./pan -m100000
 */
#define PROCESS 0 /* CUnit::mutex() */
#define ONE 1     /* the dimensionless unit */
#define A 2       /* two units, each with one cache entry */
#define B 3
#define NOBODY 255

byte owner[4] = NOBODY; /* of each lock; the locks are recursive */
byte depth[4];
bool filled[4]; /* the cache entries */

#define LOCK(lock) atomic { (owner[lock] == NOBODY || owner[lock] == _pid) -> \
                            owner[lock] = _pid; depth[lock]++ }
#define UNLOCK(lock) d_step { assert(owner[lock] == _pid); depth[lock]--; \
                              if :: depth[lock] == 0 -> owner[lock] = NOBODY :: else fi }

/* The factory registers its result. */
inline make(unit) {
    LOCK(PROCESS);
    assert(owner[unit] == _pid);
    UNLOCK(PROCESS)
}

#ifdef OLD_ORDER
inline lookUp(unit) {
    LOCK(unit);
    if
    :: filled[unit]
    :: else -> make(unit); assert(!filled[unit]); filled[unit] = true
    fi;
    UNLOCK(unit)
}
inline makeLocked(unit) { LOCK(unit); make(unit); UNLOCK(unit) }
#else
inline lookUp(unit) {
    //= const Lock lock(unit.m_LookupVectorMutex);
    //= const auto entry = static_cast<std::size_t>(index);
    //= if (entry < cache.size() && cache[entry]) {
    //=     return cache[entry];
    //= }
    LOCK(unit);
    isHit = filled[unit];
    UNLOCK(unit);
    if
    :: isHit
    //= return fill(unit, index, cache, make);
    :: else -> fill(unit)
    fi
}
inline fill(unit) {
    //= const Lock processLock(tables().Mutex);
    //= const Lock lock(unit.m_LookupVectorMutex);
    //= CUnitPtr result = CUnit::getUnitByIndexOrExpandTable(index, cache);
    //= if (!result) {
    //=     result = make();
    //=     cache[static_cast<std::size_t>(index)] = result;
    //= }
    //= return result;
    LOCK(PROCESS);
    LOCK(unit);
    if
    :: filled[unit]
    :: else -> make(unit); assert(!filled[unit]); filled[unit] = true
    fi;
    UNLOCK(unit);
    UNLOCK(PROCESS)
}
inline makeLocked(unit) {
    //= const Lock processLock(tables().Mutex);
    //= const Lock lock(unit.m_LookupVectorMutex);
    //= return make();
    LOCK(PROCESS); LOCK(unit); make(unit); UNLOCK(unit); UNLOCK(PROCESS)
}
#endif

inline negativePower(unit) {
#ifdef OLD_ORDER
    LOCK(unit); lookUp(unit); lookUp(ONE); UNLOCK(unit)
#else
    //= return CProductUnit::one()->divide(pow(-n));
    lookUp(unit); lookUp(ONE)
#endif
}

/* Computes the dimension of a product of both units. */
inline getDimension() {
    //= const Lock lock(tables().Mutex);
    //= return UnitConversion::dimensionLocked(shared_from_this());
    LOCK(PROCESS); lookUp(A); lookUp(B); lookUp(ONE); UNLOCK(PROCESS)
}

active [3] proctype thread() {
    byte done;
    bool isHit;
    do
    :: done == 2 -> break
    :: done < 2 -> done++;
       if
       :: lookUp(A)
       :: lookUp(B)
       :: negativePower(A)
       :: negativePower(B)
       :: makeLocked(A)
       :: getDimension()
       fi
    od
}
