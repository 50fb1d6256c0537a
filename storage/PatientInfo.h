#pragma once

#include <QString>

// Identification of a recording: who, when, with what. The writer puts it into the file header;
// the reader fills it back from there.
struct PatientInfo {
    // 1 male, 0 female, -1 unknown.
    int gender = -1;

    int startYear = 0;
    int startMonth = 0;
    int startDay = 0;
    int startHour = 0;
    int startMinute = 0;
    int startSecond = 0;
    // Sub-second part of the start, kept so that a record started at 12:00:00.750 does not
    // lose its milliseconds on the way through the file.
    int startMillisecond = 0;

    // Zero when unknown.
    int birthYear = 0;
    int birthMonth = 0;
    int birthDay = 0;

    QString patientName;
    QString equipment;
    QString patientCode;
    QString patientAdditional;
    QString recordingAdditional;
    QString adminCode;
};
