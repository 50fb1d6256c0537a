#include "support/EdfLibProbe.h"

#include <QFile>
#include <edflib.h>
#include <memory>

namespace EdfLibProbe {
namespace {
struct Open {
    explicit Open(const QString &path)
        : header(std::make_unique<edf_hdr_struct>())
    {
        ok = edfopen_file_readonly(QFile::encodeName(path).constData(), header.get(),
                                   EDFLIB_READ_ALL_ANNOTATIONS) == 0;
    }
    ~Open()
    {
        if (ok)
            edfclose_file(header->handle);
    }
    std::unique_ptr<edf_hdr_struct> header;
    bool ok = false;
};
} // namespace

QList<QList<int>> digitalSamples(const QString &path)
{
    Open file(path);
    QList<QList<int>> channels;
    if (!file.ok)
        return channels;
    for (int s = 0; s < file.header->edfsignals; ++s) {
        QList<int> samples(file.header->signalparam[s].smp_in_file);
        const int n =
            edfread_digital_samples(file.header->handle, s, int(samples.size()), samples.data());
        if (n != samples.size())
            return {};
        channels << samples;
    }
    return channels;
}

QList<QPair<QString, qint64>> marks(const QString &path, bool *ok)
{
    Open file(path);
    if (ok)
        *ok = file.ok;
    QList<QPair<QString, qint64>> list;
    if (!file.ok)
        return list;
    for (long long i = 0; i < file.header->annotations_in_file; ++i) {
        edf_annotation_struct a = {};
        if (edf_get_annotation(file.header->handle, int(i), &a) != 0)
            break;
        list << qMakePair(QString::fromUtf8(a.annotation), qint64(a.onset / 10000));
    }
    return list;
}

QList<qint64> onsetsOf(const QString &path, const QString &text)
{
    QList<qint64> onsets;
    for (const auto &mark : marks(path))
        if (mark.first == text)
            onsets << mark.second;
    return onsets;
}
} // namespace EdfLibProbe
