#include "cli/CliContext.h"

#include "device/CorvidaModel.h"
#include "settings/CorvidaSettings.h"
#include "storage/EDFReader.h"
#include "storage/XLSXHelper.h"
#include "toolkit/QuorvexCommon.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#ifdef Q_OS_WIN
#include <io.h>
#define isatty _isatty
#define fileno _fileno
#else
#include <unistd.h>
#endif

CliContext::CliContext(const QString &dataFolder, QTextStream &out, QTextStream &err)
    : m_dataFolder(QDir::fromNativeSeparators(dataFolder))
    , m_out(out)
    , m_err(err)
{
    if (!m_dataFolder.endsWith(QLatin1Char('/')))
        m_dataFolder += QLatin1Char('/');
}

CliContext::~CliContext() = default;

CorvidaSettings *CliContext::settings()
{
    if (!m_settings) {
        QuorvexCommon::CreateDirIfNotExists(m_dataFolder);
        m_settings =
            std::make_unique<CorvidaSettings>(m_dataFolder + QStringLiteral("Settings.xml"));
        CorvidaModel::setDetectionMethod(m_settings->getDetectionMethod());
    }
    return m_settings.get();
}

int CliContext::fail(const QString &message)
{
    m_out.flush();
    m_err << "corvida-cli: " << message << Qt::endl;
    return 1;
}

bool CliContext::asksForHelp(const QStringList &arguments)
{
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--help") || arguments[i] == QLatin1String("-h"))
            return true;
    }
    return false;
}

int CliContext::help(const QString &usage, const QCommandLineParser *parser)
{
    m_out << "usage: corvida-cli " << usage << '\n';
    if (parser) {
        // The parser's own first line names the executable only; its options follow a blank line.
        const QString text = parser->helpText();
        const qsizetype options = text.indexOf(QLatin1String("\n\n"));
        if (options >= 0)
            m_out << text.mid(options + 1);
    }
    m_out.flush();
    return 0;
}

bool CliContext::stderrIsTerminal()
{
    return isatty(fileno(stderr)) != 0;
}

bool CliContext::checkRecord(const QString &edfPath, QString *why)
{
    const QFileInfo info(edfPath);
    if (!info.exists()) {
        *why = QStringLiteral("%1: no such file").arg(edfPath);
        return false;
    }
    if (!info.isFile() || !info.isReadable()) {
        *why = QStringLiteral("%1: cannot be read").arg(edfPath);
        return false;
    }
    EDFReader reader(edfPath);
    if (!reader.open()) {
        *why = QStringLiteral("%1: not an EDF+ file").arg(edfPath);
        return false;
    }
    const QStringList names = reader.getChannelNames();
    if (!names.contains(QStringLiteral("Pressure")) || !names.contains(QStringLiteral("Pulse"))) {
        *why =
            QStringLiteral("%1: not a Corvida record (no Pressure and Pulse signals)").arg(edfPath);
        return false;
    }
    return true;
}

QString CliContext::expPathFor(const QString &edfPath)
{
    const QFileInfo info(edfPath);
    const QString wanted = info.completeBaseName() + QStringLiteral(".exp");
    const QString exact = info.dir().filePath(wanted);
    if (QFile::exists(exact))
        return exact;
    // Files carried over from Windows are often "NAME.EDF" with "NAME.EXP".
    for (const QString &name : info.dir().entryList(QDir::Files | QDir::Hidden)) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            return info.dir().filePath(name);
    }
    return exact;
}

QString CliContext::tableLine(const QStringList &cells)
{
    QStringList quoted;
    quoted.reserve(cells.size());
    for (const QString &cell : cells)
        quoted << XLSXHelper::csvCell(cell, QStringLiteral(";"));
    return quoted.join(QLatin1Char(';'));
}
