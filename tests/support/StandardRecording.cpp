#include "support/StandardRecording.h"

#include "storage/EDFWriter.h"

#include <QList>

bool writeStandardRecording(const QString &path)
{
    EDFWriter writer(path, QStringList{"Pressure", "Pulse", "IR"}, 100,
                     {{QStringLiteral("HP"), 0.5f}, {QStringLiteral("LP"), 40.0f}},
                     {1000.0, 1000.0, 1000.0});
    PatientInfo p;
    p.patientName = QStringLiteral("Ivan Petrov");
    p.gender = 1;
    p.birthYear = 2024;
    p.birthMonth = 2;
    p.birthDay = 29;
    p.startYear = 2026;
    p.startMonth = 11;
    p.startDay = 21;
    p.startHour = 14;
    p.startMinute = 5;
    p.startSecond = 9;
    writer.setPatientInfo(p);
    QList<float> data;
    for (int s = 0; s < 3; ++s)
        for (int i = 0; i < 350; ++i)
            data.append(float(s * 10 + i / 10.0));
    writer.writeData(350, data.constData());
    writer.addAnnotation(QStringLiteral("SBP"), 1500, -1);
    writer.addAnnotation(QStringLiteral("second"), 1500, -1);
    return writer.close(true);
}
