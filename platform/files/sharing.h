#pragma once

// The layer's own keeping of sharing modes, for its sources that open files; programs open files by
// CreateFileA of platform/win32.h.
//
// Threads: any; the modes belong to the open file.

#include "platform/win32.h"

namespace tarn {

constexpr DWORD reading = FILE_SHARE_READ;
constexpr DWORD writing = FILE_SHARE_WRITE;

// What an open asks of the other opens: `used` is what it does with the file, cutting it to nothing included,
// `access` what its handle allows from then on, `shared` what others may do beside it.
struct SharingTerms {
    DWORD used, access, shared;
};

// Answers whether no other open file stands against these terms, which are marked then.  Files that can't be
// locked (devices, file systems without locks) keep no sharing modes; one that the system lets us only write
// is tested but can't be marked.
bool share(int descriptor, const SharingTerms& terms);

// Answers whether another open file denies reading just now, at the cost of one system call.  Nothing is
// marked, so this serves only who reads at once and closes.
bool isReadingDenied(int descriptor);

}  // namespace tarn
