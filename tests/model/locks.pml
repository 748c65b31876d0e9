/* locks.pml: the locks of the algebra and of dimensions, for spin. Three threads do two things each, in
 * all ways in which they can meet: none of them waits for ever, and each slot is filled once.
 *
 * scripts/check runs it twice: as it is, without finding a fault, and with -DOLD_ORDER, where a unit's
 * lock is kept while that of the process is taken, and where a deadlock must be found.
 *
 * The lines that begin with "//=" are those of src/mensor/Unit.cpp which are modelled. scripts/check
 * compares them. Whoever changes them there changes the model, too.
 *
 *     spin -a locks.pml && cc -DSAFETY -o pan pan.c && ./pan -m100000
 */
#define PROCESS 0 /* CUnit::mutex() */
#define ONE 1     /* the dimensionless unit */
#define A 2       /* two units, each with one slot */
#define B 3
#define NOBODY 255

byte owner[4] = NOBODY; /* of the locks, which are recursive */
byte depth[4];
bool filled[4]; /* the slots */

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
    //= const Lock lock(m_LookupVectorMutex);
    //= const auto slot = static_cast<std::size_t>(index);
    //= if (slot < table.size() && table[slot]) {
    //=     return table[slot];
    //= }
    LOCK(unit);
    isHit = filled[unit];
    UNLOCK(unit);
    if
    :: isHit
    //= return fill(index, table, make);
    :: else -> fill(unit)
    fi
}
inline fill(unit) {
    //= const Lock processLock(tables().Mutex);
    //= const Lock lock(m_LookupVectorMutex);
    //= CUnitPtr result = getUnitByIndexOrExpandTable(index, table);
    //= if (!result) {
    //=     result = make();
    //=     table[static_cast<std::size_t>(index)] = result;
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
    //= const Lock lock(m_LookupVectorMutex);
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

/* Folds the dimension of a product of both units. */
inline getDimension() {
    //= const Lock lock(tables().Mutex);
    //= return dimensionLocked(shared_from_this());
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
