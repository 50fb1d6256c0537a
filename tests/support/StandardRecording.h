#pragma once

#include <QString>

// A small EDF+ recording the EDF tests share: three signals at 100 Hz for 3.5 s (four data
// records of one second) where signal s holds s*10 + i/10; patient "Ivan Petrov", born
// 2024-02-29, started 2026-11-21 14:05:09; prefilters HP 0.5 and LP 40; two marks, "SBP" and
// "second", at 1.5 s. Every EDF+ subfield of the header is present. False if it was not written.
bool writeStandardRecording(const QString &path);
