#pragma once

/// Base64 of bytes: the standard alphabet of RFC 4648, "=" as the pad, no line breaks. Nothing here knows of
/// the host.
///
/// Lengths are in bytes; a negative one counts as 0. The output is a new array with a terminating zero behind
/// what is counted; the caller frees it with delete[]. An answer that an int cannot count throws
/// std::length_error, a lack of memory std::bad_alloc; nothing is allocated then.

/// Gives the number of characters written, 4 for every three bytes begun. A length of 0 gives one group, the
/// one of a zero byte with nothing behind it: "AA==". Without `out` it gives 0 and does nothing.
int B64_Encode(const char* in, int length, char** out);

/// Gives the number of bytes decoded: 3 for every four characters begun, less one for each of the last
/// group's second, third and fourth characters that is "=". Nothing is checked or skipped: line breaks,
/// blanks, bytes from 0x80 on, and "=" itself count as "A" where they stand. Characters that the last group
/// lacks are "="; without any character there are 0 bytes. Without `out` it gives 0 and does nothing.
int B64_Decode(const char* in, int length, char** out);
