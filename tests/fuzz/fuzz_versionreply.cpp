// libFuzzer target: the reply of the new-version check, as it comes from the network, and the
// version texts in it. Nothing may crash or trip the sanitizers (a version of six parts used to
// overflow its number), and the comparison must stay an order: no version is newer than itself,
// and of two versions at most one is the newer.
#include "toolkit/VersionChecker.h"

#include <QString>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const VersionInfo info = VersionChecker::parseVersionInfo(bytes);
    // The reply's version, and the raw input as a version text of its own.
    const QString texts[2] = {info.version, QString::fromUtf8(bytes.left(256))};
    for (const QString &version : texts) {
        (void)VersionChecker::versionToZero4Number(version);
        (void)VersionChecker::versionFromZero4String(VersionChecker::versionToZero4String(version));
        if (VersionChecker::isNewer(version, version))
            std::abort();
    }
    for (const QString &current : {QStringLiteral("0.1.0"), QStringLiteral("1.2.3.4.5.6")}) {
        if (VersionChecker::isNewer(texts[0], current) &&
            VersionChecker::isNewer(current, texts[0]))
            std::abort();
    }
    if (VersionChecker::isNewer(texts[0], texts[1]) && VersionChecker::isNewer(texts[1], texts[0]))
        std::abort();
    return 0;
}
