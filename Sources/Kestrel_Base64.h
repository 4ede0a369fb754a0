#pragma once

/// Base64 of bytes: the standard alphabet of RFC 4648, "=" as the pad, no line breaks. Nothing here needs the
/// host.
///
/// Lengths are in bytes; a negative length counts as 0. The output is a new array with a terminating zero
/// after the counted bytes. The caller frees it with delete[]. An output whose length does not fit an int
/// throws std::length_error. A lack of memory throws std::bad_alloc. Nothing is allocated in either case.

/// Returns the number of characters written: four for every three bytes or rest of them. A length of 0 gives
/// the group of a single zero byte, "AA==". Without `out` it returns 0 and does nothing.
int B64_Encode(const char* in, int length, char** out);

/// Returns the number of bytes decoded: three for every four characters or rest of them, less one for each
/// "=" among the last group's second, third and fourth characters. Nothing is checked or skipped: line
/// breaks, blanks, bytes from 0x80 on, and "=" itself count as "A". Characters missing from the last group
/// count as "=". Without any character there are 0 bytes. Without `out` it returns 0 and does nothing.
int B64_Decode(const char* in, int length, char** out);
