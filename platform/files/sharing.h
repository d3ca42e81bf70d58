#pragma once

// Sharing modes, for those sources of the layer that open files; programs open files by CreateFileA of
// platform/win32.h.
//
// Threads: any; the modes belong to the open file.

#include "platform/win32.h"

namespace tarn {

// The two kinds of access, as bits of an access and of a share mode alike.
constexpr DWORD readAccess = FILE_SHARE_READ;
constexpr DWORD writeAccess = FILE_SHARE_WRITE;

// What an open asks of the other opens.
struct SharingTerms {
    DWORD used;    // what it does with the file, cutting it to nothing included
    DWORD access;  // what its handle allows from then on
    DWORD shared;  // what others may do beside it
};

// Answers whether these terms agree with those of all other open files, and marks the file with them if so.
// Files that can't be locked (devices, file systems without locks) have no sharing modes; one that the system
// lets us only write is tested but can't be marked.
bool share(int descriptor, const SharingTerms& terms);

// Answers whether another open file denies reading just now, at the cost of one system call.  Nothing is
// marked, so this serves only who reads at once and closes.
bool isReadingDenied(int descriptor);

// Answers whether another open file reads or writes it just now.  Nothing is marked.
bool isInUse(int descriptor);

}  // namespace tarn
