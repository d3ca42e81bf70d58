// Sharing modes as locks that belong to the open file, not to the process (F_OFD_SETLK), so that they hold
// inside one process as well as between processes and end with the descriptor.  Every open file holds shared
// locks on up to four bytes far beyond any content, one for each mark that it sets:
//
//   byte      0: reads   1: writes   2: denies reading   3: denies writing
//
// A new open is refused where its own marks, with the two halves exchanged, meet another's: one that reads
// meets "denies reading", one that denies writing meets "writes".  Tests: tests/platform/files_test.cpp.

#define _FILE_OFFSET_BITS 64  // the marks lie beyond 2 GiB also in 32-bit code

#include "platform/files/sharing.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <ctime>

namespace tarn {

namespace {

constexpr off_t firstMark = off_t{1} << 62;
constexpr int markCount = 4;
constexpr int reads = 0;
constexpr int deniesReading = 2;

struct flock markLock(int mark, int type, int count = 1) {
    struct flock lock {};
    lock.l_type = static_cast<short>(type);
    lock.l_whence = SEEK_SET;
    lock.l_start = firstMark + mark;
    lock.l_len = count;
    return lock;
}

// Whether another has one of `count` marks.
bool isMarkedByAnother(int descriptor, int mark, int count = 1) {
    struct flock lock = markLock(mark, F_WRLCK, count);
    return ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

// Takes the lock that makes looking and marking one step.  It is held for microseconds; whoever else holds it
// for longer makes the open fail rather than wait for ever.  Answers 0 or errno.
int enterGate(int descriptor) {
    constexpr int tries = 500;
    constexpr std::timespec pause{0, 1'000'000};
    for (int i = 0; i < tries; ++i) {
        if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return 0;
        if (errno != EWOULDBLOCK && errno != EINTR) return errno;
        ::nanosleep(&pause, nullptr);
    }
    return EWOULDBLOCK;
}

}  // namespace

bool share(int descriptor, const SharingTerms& terms) {
    const int gate = enterGate(descriptor);
    if (gate != 0) return gate != EWOULDBLOCK;
    const DWORD denied = terms.access == 0 ? 0 : ~terms.shared & (readAccess | writeAccess);
    const DWORD marks = terms.access | denied << 2;
    const DWORD against = denied | terms.used << 2;
    bool free = true;
    for (int mark = 0; mark < markCount && free; ++mark) {
        free = (against >> mark & 1) == 0 || !isMarkedByAnother(descriptor, mark);
    }
    for (int mark = 0; mark < markCount && free; ++mark) {
        struct flock lock = markLock(mark, F_RDLCK);
        if ((marks >> mark & 1) != 0) ::fcntl(descriptor, F_OFD_SETLK, &lock);
    }
    ::flock(descriptor, LOCK_UN);
    return free;
}

bool isReadingDenied(int descriptor) {
    return isMarkedByAnother(descriptor, deniesReading);
}

bool isInUse(int descriptor) {
    return isMarkedByAnother(descriptor, reads, 2);
}

}  // namespace tarn
