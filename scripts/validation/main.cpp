// Measures how close the markers come to the truth: simulated animals of every preset under
// every condition, each cycle analysed by both ways of placing the markers, and the errors
// written to <docs>/validation.md with Bland-Altman pictures in <docs>/images/validation/.
//
// usage: corvida_validation DOCS_FOLDER [CYCLES_PER_GROUP] [FIRST_SEED]
//
// It also prints, per animal and per condition, whether the refined method is at least as good
// as the documented one (mean absolute error, SD, missed markers), so other seeds can be checked
// without touching the report: give another first seed and a scratch folder.

#include "analysis/CorvidaOnlineExperiment.h"
#include "device/SyntheticAnimal.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <map>

namespace {
enum Quantity { SBP, DBP, HR };
const char *const kQuantityNames[] = {"SBP", "DBP", "Heart rate"};
const char *const kUnits[] = {"mmHg", "mmHg", "beats/min"};
const char *const kMethodNames[] = {"documented", "refined"};

// One cycle's truth and what each method found (0 = no marker).
struct Outcome {
    QString preset;
    QString condition;
    double truth[3] = {0, 0, 0};
    double found[2][3] = {{0, 0, 0}, {0, 0, 0}};
};

struct Stats {
    int cycles = 0;
    int found = 0;
    double mean = 0;
    double sd = 0;
    double meanAbs = 0;
    double missedShare() const { return cycles ? double(cycles - found) / cycles : 0.0; }
    double low() const { return mean - 1.96 * sd; }
    double high() const { return mean + 1.96 * sd; }
};

Stats stats(const QList<Outcome> &outcomes, int method, Quantity q)
{
    Stats s;
    QList<double> errors;
    for (const Outcome &o : outcomes) {
        ++s.cycles;
        const double v = o.found[method][q];
        if (v > 0 && std::isfinite(v))
            errors << v - o.truth[q];
    }
    s.found = int(errors.size());
    if (errors.isEmpty())
        return s;
    for (double e : errors) {
        s.mean += e;
        s.meanAbs += std::abs(e);
    }
    s.mean /= errors.size();
    s.meanAbs /= errors.size();
    for (double e : errors)
        s.sd += (e - s.mean) * (e - s.mean);
    s.sd = errors.size() > 1 ? std::sqrt(s.sd / (errors.size() - 1)) : 0.0;
    return s;
}

// The mean heart-rate error of a method as a share of the true rate, in per cent.
double heartRateErrorPercent(const QList<Outcome> &outcomes, int method)
{
    double sum = 0;
    int n = 0;
    for (const Outcome &o : outcomes) {
        const double v = o.found[method][HR];
        if (v > 0 && std::isfinite(v) && o.truth[HR] > 0) {
            sum += 100.0 * (v - o.truth[HR]) / o.truth[HR];
            ++n;
        }
    }
    return n ? sum / n : 0.0;
}

QString num(double v, int decimals = 1)
{
    return QString::number(v, 'f', decimals);
}

Outcome analyse(const SyntheticAnimal::Cycle &cycle)
{
    Outcome o;
    o.preset = cycle.truth.preset;
    o.condition = cycle.truth.condition;
    o.truth[SBP] = cycle.truth.systolic;
    o.truth[DBP] = cycle.truth.diastolic;
    o.truth[HR] = cycle.truth.heartRate;
    CorvidaOnlineExperiment record;
    record.setSamplingRate(cycle.samplingRate);
    record.updateData({cycle.pressure, cycle.pulse});
    for (int method = 0; method < 2; ++method) {
        record.setMethod(method == 0 ? QString() : CorvidaExperiment::refinedMethod());
        record.recalculate(true);
        o.found[method][SBP] = record.getSBP();
        o.found[method][DBP] = record.getDBP();
        o.found[method][HR] = record.getBPM();
    }
    return o;
}

// `perGroup` cycles of every animal under every condition, seeds counting up from `firstSeed`,
// each analysed both ways.
QList<Outcome> analyseCycles(int perGroup, quint32 firstSeed)
{
    QList<Outcome> outcomes;
    quint32 seed = firstSeed;
    for (const QString &preset : SyntheticAnimal::presetNames()) {
        for (const QString &condition : SyntheticAnimal::conditionNames()) {
            SyntheticAnimal::Preset p;
            SyntheticAnimal::Condition c;
            SyntheticAnimal::presetFromName(preset, &p);
            SyntheticAnimal::conditionFromName(condition, &c);
            for (int i = 0; i < perGroup; ++i)
                outcomes << analyse(SyntheticAnimal(p, c, seed++).generate());
        }
    }
    return outcomes;
}

// A Bland-Altman picture: the difference (found - true) against the mean of the two, both
// methods in their own colour, with each method's bias and 95 % limits of agreement.
bool drawBlandAltman(const QList<Outcome> &outcomes, Quantity q, int methods, const QString &path)
{
    const int w = 900, h = 560, left = 80, right = 190, top = 40, bottom = 60;
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    double xMin = 1e9, xMax = -1e9, yMax = 1.0;
    for (const Outcome &o : outcomes) {
        for (int m = 0; m < methods; ++m) {
            const double v = o.found[m][q];
            if (!(v > 0 && std::isfinite(v)))
                continue;
            xMin = std::min(xMin, (v + o.truth[q]) / 2);
            xMax = std::max(xMax, (v + o.truth[q]) / 2);
            yMax = std::max(yMax, std::abs(v - o.truth[q]));
        }
    }
    if (xMin > xMax)
        return false;
    const double pad = std::max(1.0, (xMax - xMin) * 0.05);
    xMin -= pad;
    xMax += pad;
    yMax *= 1.1;
    const auto X = [&](double x) { return left + (x - xMin) / (xMax - xMin) * (w - left - right); };
    const auto Y = [&](double y) { return top + (yMax - y) / (2 * yMax) * (h - top - bottom); };

    p.setPen(QPen(Qt::gray, 1));
    p.drawRect(QRectF(left, top, w - left - right, h - top - bottom));
    p.drawLine(QPointF(left, Y(0)), QPointF(w - right, Y(0)));
    p.setPen(Qt::black);
    for (int i = 0; i <= 4; ++i) {
        const double x = xMin + (xMax - xMin) * i / 4;
        p.drawText(QRectF(X(x) - 40, h - bottom + 4, 80, 18), Qt::AlignCenter, num(x, 0));
        const double y = -yMax + 2 * yMax * i / 4;
        p.drawText(QRectF(0, Y(y) - 9, left - 6, 18), Qt::AlignRight | Qt::AlignVCenter, num(y, 1));
    }
    p.drawText(QRectF(left, h - 30, w - left - right, 20), Qt::AlignCenter,
               QStringLiteral("mean of found and true %1 (%2)")
                   .arg(QString::fromLatin1(kQuantityNames[q]), QString::fromLatin1(kUnits[q])));
    p.drawText(QRectF(left, 8, w - left - right, 24), Qt::AlignCenter,
               QStringLiteral("%1: found minus true (%2), %3 cycles")
                   .arg(QString::fromLatin1(kQuantityNames[q]), QString::fromLatin1(kUnits[q]))
                   .arg(outcomes.size()));

    const QColor colours[2] = {QColor(0, 90, 200), QColor(220, 90, 0)};
    for (int m = 0; m < methods; ++m) {
        QColor dot = colours[m];
        dot.setAlpha(110);
        p.setPen(Qt::NoPen);
        p.setBrush(dot);
        for (const Outcome &o : outcomes) {
            const double v = o.found[m][q];
            if (v > 0 && std::isfinite(v))
                p.drawEllipse(QPointF(X((v + o.truth[q]) / 2), Y(v - o.truth[q])), 3, 3);
        }
        const Stats s = stats(outcomes, m, q);
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(colours[m], 2));
        p.drawLine(QPointF(left, Y(s.mean)), QPointF(w - right, Y(s.mean)));
        p.setPen(QPen(colours[m], 1.5, Qt::DashLine));
        for (double y : {s.low(), s.high()})
            p.drawLine(QPointF(left, Y(y)), QPointF(w - right, Y(y)));
        p.setPen(colours[m]);
        const QString label =
            methods == 1 ? QStringLiteral("both methods") : QString::fromLatin1(kMethodNames[m]);
        p.drawText(QRectF(w - right + 10, top + m * 70, right - 12, 66),
                   Qt::AlignLeft | Qt::AlignTop,
                   QStringLiteral("%1\nbias %2\nLoA %3 to %4")
                       .arg(label, num(s.mean), num(s.low()), num(s.high())));
    }
    p.end();
    return image.save(path);
}

void overallTable(QTextStream &md, const QList<Outcome> &all)
{
    md << "| quantity | method | cycles | markers found | mean error | SD | 95 % limits of "
          "agreement | mean absolute error |\n|---|---|---|---|---|---|---|---|\n";
    for (int q = SBP; q <= HR; ++q) {
        for (int m = 0; m < 2; ++m) {
            const Stats s = stats(all, m, Quantity(q));
            md << "| " << kQuantityNames[q] << " (" << kUnits[q] << ") | "
               << kMethodNames[m] << " | " << s.cycles << " | " << s.found
               << " | " << num(s.mean, 2) << " | " << num(s.sd, 2) << " | " << num(s.low(), 1)
               << " to " << num(s.high(), 1) << " | " << num(s.meanAbs, 2) << " |\n";
        }
    }
}

void groupTable(QTextStream &md, const QList<Outcome> &all, bool byPreset)
{
    std::map<QString, QList<Outcome>> groups;
    QStringList order;
    for (const Outcome &o : all) {
        const QString key = byPreset ? o.preset : o.condition;
        if (!groups.count(key))
            order << key;
        groups[key] << o;
    }
    md << "| " << (byPreset ? "animal" : "condition")
       << " | cycles | SBP documented: mean ± SD (mean absolute error) | SBP refined | DBP "
          "documented | DBP "
          "refined | heart rate documented: mean ± SD (mean in % of true) | heart rate refined | "
          "missed SBP/DBP documented | missed SBP/DBP refined "
          "|\n|---|---|---|---|---|---|---|---|---|---|\n";
    for (const QString &key : std::as_const(order)) {
        const QList<Outcome> &g = groups[key];
        md << "| " << key << " | " << g.size();
        for (int q = SBP; q <= DBP; ++q) {
            for (int m = 0; m < 2; ++m) {
                const Stats s = stats(g, m, Quantity(q));
                md << " | " << num(s.mean) << " ± " << num(s.sd) << " (" << num(s.meanAbs) << ")";
            }
        }
        for (int m = 0; m < 2; ++m) {
            const Stats hr = stats(g, m, HR);
            md << " | " << num(hr.mean) << " ± " << num(hr.sd) << " ("
               << num(heartRateErrorPercent(g, m), 2) << " %)";
        }
        for (int m = 0; m < 2; ++m)
            md << " | " << num(100 * stats(g, m, SBP).missedShare(), 0) << " % / "
               << num(100 * stats(g, m, DBP).missedShare(), 0) << " %";
        md << " |\n";
    }
}

QList<Outcome> conditionOf(const QList<Outcome> &all, const QString &condition)
{
    QList<Outcome> g;
    for (const Outcome &o : all) {
        if (o.condition == condition)
            g << o;
    }
    return g;
}

// Prints, per group, whether the refined method is no worse than the documented one; returns
// the number of groups where it is worse.
int printCheck(QTextStream &out, const QList<Outcome> &all, bool byPreset)
{
    std::map<QString, QList<Outcome>> groups;
    for (const Outcome &o : all)
        groups[byPreset ? o.preset : o.condition] << o;
    int worse = 0;
    for (const auto &[key, g] : groups) {
        out << key.leftJustified(18);
        bool ok = true;
        for (int q = SBP; q <= DBP; ++q) {
            const Stats d = stats(g, 0, Quantity(q));
            const Stats r = stats(g, 1, Quantity(q));
            ok = ok && r.meanAbs <= d.meanAbs && r.sd <= d.sd && r.found >= d.found;
            out << " " << kQuantityNames[q] << " |e| " << num(d.meanAbs, 2) << "->"
                << num(r.meanAbs, 2) << " SD " << num(d.sd, 2) << "->" << num(r.sd, 2) << " missed "
                << (d.cycles - d.found) << "->" << (r.cycles - r.found);
        }
        const double hrDocumented = heartRateErrorPercent(g, 0);
        const double hrRefined = heartRateErrorPercent(g, 1);
        ok = ok && std::abs(hrRefined) <= std::max(1.0, std::abs(hrDocumented));
        out << "  HR % " << num(hrDocumented, 2) << "->" << num(hrRefined, 2)
            << (ok ? "" : "  WORSE") << "\n";
        worse += ok ? 0 : 1;
    }
    return worse;
}

const char *kMethodText = R"(## How the refined method places the markers

Both methods start from the same beats: the peak finder marks every pulse wave and measures its
amplitude (systolic peak over the preceding minimum). They differ in how they read the
amplitudes against the cuff pressure.

The **documented method** takes as systolic the first beat of a dense, regular run of beats
(more than nine in the next three seconds, with few before it), and as diastolic the beat,
15 to 50 mmHg below that, where the growth of the amplitude over the 10 mmHg above it differs
most from the growth over the 10 mmHg below it. Its systolic point is therefore the first beat
that the peak finder can see, which comes late when the pulse is small (a cold tail) or when
the cuff falls fast, because the first returning beats are too small to be counted.

The **refined method** looks at the amplitude envelope during deflation as a whole:

1. Only beats after the cuff's highest pressure count. Beats of a moving animal are left out:
   a beat more than 1.6 times the typical amplitude of the 25 beats around it (their median)
   and above half the plateau, with one beat on each side of it. A moving tail swings the
   sensor far more than any pulse, while the pulse of the open artery is never much above its
   neighbours. The remaining amplitudes are smoothed with a running median of five beats, so
   one premature beat does not matter.
2. The *floor* is the median amplitude in the first second after the cuff's peak, when the
   artery is closed (what noise looks like), leaving out beats over half the plateau (only
   movement makes those under a closed cuff); the *plateau* is the median of the smoothed
   amplitudes near their upper quartile (the open artery holds most beats of a deflation,
   and the median stays on its middle level however deep the breathing swings).
3. The pulse has *returned* at the start of the run of beats above a fifth of the way from
   floor to plateau that lasts, with dips of at most three beats, to the end of the cycle. A
   burst of movement under a closed cuff breaks off again and is not taken for the return.
   The run also ends at a silence of more than 1.5 s in which the peak finder found no beat
   at all, moving ones included: with the artery open it finds beats all the time, so a few
   beats before such a silence (the tail of a twitch) are not the pulse coming back.
   Once that moment is known, the floor is taken again, as the median of the beats in the
   first half of the time from the cuff's peak to the return (all closed artery, well above
   SBP, and many more beats than one second holds), and the return is found again with it.
4. A straight line is fitted, by least squares, to amplitude against cuff pressure through the
   rising beats between one fifth and four fifths of the way from floor to plateau: through
   the beats' own amplitudes when the rise holds at least 15 beats (the fit averages the
   breathing out), through the smoothed ones when it holds fewer (a fast deflation, a small
   pulse).
5. **SBP** is the cuff pressure at which this line leaves the floor: the onset of the rise,
   found from all rising beats together instead of from the first visible one.
6. **DBP** is the knee where the growth of the amplitude stops. It is found from the whole
   envelope: three straight pieces (a flat floor above SBP, a straight rise, a flat plateau
   below DBP) are fitted to the smoothed amplitudes of every beat of the deflation by least
   squares, trying both corners every 0.5 mmHg, and the lower corner is DBP. The line of
   step 4 sees only the rising beats; noise under the closed cuff that lies in its band
   flattens it and moves its meeting with the plateau far down, while in the fit of the whole
   envelope those beats belong to the floor. If this fit finds no knee below the SBP of step 5,
   the line's meeting with the plateau is used.
   When the floor is a quarter of the plateau or more (a noisy sensor, whose noise peaks pass
   for beats under the closed cuff), the rising beats of step 4 are mostly noise and the line
   comes out far too flat; SBP is then the upper corner of the same three-piece fit, made on
   the amplitudes with the floor's noise taken out (noise and pulse add roughly as powers, so
   each beat's pulse is the square root of its squared amplitude less the squared floor).
7. Otherwise SBP is checked against the shape of the rise. The pulse need not grow in a
   straight line: if the arterial pressure spends most of each beat near its diastolic
   level, it grows slowly just below SBP and fast near DBP, and the line of step 4 meets the
   floor too low. With the floor and plateau of step 6 and its DBP, the rise is fitted as
   floor + (plateau - floor) u^g, u = (SBP - p) / (SBP - DBP), for g = 1 (straight), 1.25,
   1.5, 1.75, 2 and 2.5 and SBP every 0.5 mmHg from 5 below to 40 above the line's SBP, by
   least squares over the beats from 5 mmHg below DBP to 20 mmHg above the SBP tried. Beats
   too faint for the peak finder are missing just below SBP, so a fit anchored on the visible
   beats can fall short of SBP but not pass it: the higher of the two SBPs is taken.
8. The markers are put at the moments the falling cuff pressure (averaged over 50 ms) passes
   those two pressures. If the line is implausible (it does not fall with pressure, or would
   start above the cuff's top), the first returned beat and the end of the rise are used.
9. If no pulse returns during deflation, or the cuff was never inflated, there are no
   markers, and the record says why. It never guesses.

A physiologist can check each step on a record: the envelope is the amplitude series the
viewer shows; the floor, the plateau and the straight line through the rise can be drawn by
hand on it, and SBP and DBP read off where the line meets them.

**Heart rate.** The documented method reports the mean beat rate of the peak finder over the
whole record, noise under the closed cuff included. The refined method counts only the beats
of the open artery: those at cuff pressures below its SBP, or below the corner where the
fit of step 6 leaves its floor if that is lower (before inflation and after the pulse
returns), and at least half as large as the median of the nine beats around them. It
walks these beats and reads each step from the last counted beat as a whole number of heart
beats; a step shorter than 0.7 of the usual interval is no beat of its own and is stepped
over, and gaps of more than three beats (the closed artery) are not counted. The rate is the
beats counted over the time they span, so a missed beat counts as two intervals and a
premature beat with its compensatory pause as the two beats they are. Without an SBP, or with
fewer than ten such beats, the record keeps the peak finder's rate.
)";

const char *kAnimalText = R"(## The simulated animal

Each cycle is one measurement of a simulated animal (`corvida-cli simulate` writes the same
cycles as records). The cuff rests open for 1.5 s, inflates at 100 mmHg/s to about 45 mmHg
above the true SBP, deflates linearly at 10 mmHg/s (5 slow, 25 fast) to 0 and rests 1.5 s.
The pulse amplitude follows the cuff pressure p: zero at p ≥ SBP, rising linearly from SBP
down to DBP (the artery is open for the part of each beat in which the arterial pressure
exceeds the cuff), full below DBP. The heart beats with 2 % beat-to-beat variability,
breathing modulates rate, amplitude (3 %) and baseline; each beat is a PPG wave with a
steep upstroke and a reflected-wave shoulder.

| animal | true SBP | true DBP | heart rate | breathing | amplitude |
|---|---|---|---|---|---|
| mouse | 115 | 80 | 600 | 150/min | 0.5 |
| rat | 125 | 85 | 360 | 85/min | 0.8 |
| hypertensive-rat | 185 | 130 | 400 | 85/min | 0.6 |

Conditions: *clean*; *noise* (band-limited pulse noise of 15 % of the amplitude, 1 mmHg on
the pressure); *cold-tail* (a tenth of the amplitude); *movement* (three bursts of 0.4 to
1 s, 2 to 4 times the amplitude, with 3 to 8 mmHg on the cuff); *ectopic* (8 % premature
beats at 0.6 of the interval with a compensatory pause); *slow-deflation*;
*fast-deflation*; *curved-rise* (the pulse comes back along a curve instead of a straight
line: the share of each beat in which an arterial pressure that falls from SBP to DBP as an
exponential run-off over one time constant is above the cuff, so at the midpoint between SBP
and DBP only 38 % of the pulse is back; the refined method's straight line does not hold
there). The true heart rate is 60 over the mean of all generated intervals.
)";
} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        QTextStream(stderr) << "usage: corvida_validation DOCS_FOLDER [CYCLES_PER_GROUP]\n";
        return 1;
    }
    const QString docs = args[1];
    const int perGroup = args.size() > 2 ? std::max(1, args[2].toInt()) : 15;
    const quint32 firstSeed = args.size() > 3 ? args[3].toUInt() : 1000;
    const QString images = docs + QStringLiteral("/images/validation");
    QDir().mkpath(images);

    const QList<Outcome> all = analyseCycles(perGroup, firstSeed);

    QFile file(docs + QStringLiteral("/validation.md"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        QTextStream(stderr) << "cannot write " << file.fileName() << "\n";
        return 1;
    }
    QTextStream md(&file);
    md << "# How close the markers come to the truth\n\n"
       << "Generated by `scripts/validation.sh` from " << all.size()
       << " simulated measurement cycles (" << perGroup << " per animal and condition, seeds "
       << firstSeed
       << " on). Errors are found minus true; a cycle "
          "in which a method placed no marker counts as missed and is left out of its error "
          "figures. Limits of agreement are the mean error ± 1.96 SD (Bland–Altman).\n\n"
       << "## All cycles\n\n";
    overallTable(md, all);
    md << "\n## Per animal\n\n";
    groupTable(md, all, true);
    md << "\n## Per condition\n\n";
    groupTable(md, all, false);
    md << "\n## Bland–Altman plots\n\n";
    const struct {
        Quantity q;
        const char *file;
        int methods;
    } plots[] = {{SBP, "bland-altman-sbp.png", 2},
                 {DBP, "bland-altman-dbp.png", 2},
                 {HR, "bland-altman-heart-rate.png", 2}};
    for (const auto &plot : plots) {
        if (!drawBlandAltman(all, plot.q, plot.methods,
                             images + QLatin1Char('/') + QLatin1String(plot.file)))
            QTextStream(stderr) << "cannot draw " << plot.file << "\n";
        md << "![" << kQuantityNames[plot.q] << "](images/validation/" << plot.file << ")\n\n";
    }
    md << kMethodText << "\n" << kAnimalText;

    // The same comparison on cycles the method was not developed on: four times as many per
    // group, from other seeds.
    const quint32 freshSeed = 40000;
    const int freshPerGroup = 4 * perGroup;
    const QList<Outcome> fresh = analyseCycles(freshPerGroup, freshSeed);
    md << "\n## Refined against documented, group by group\n\n"
       << "Per animal and per condition: mean absolute error and SD of each method (documented -> "
          "refined), the markers each missed, and each method's mean heart-rate error in % of "
          "the true "
          "rate. \"WORSE\" marks a group where the refined method is worse in any of these for "
          "SBP or DBP, or where its heart rate is off by more than 1 % and more than the "
          "documented one's. First on the cycles above, then on "
       << fresh.size() << " other cycles (" << freshPerGroup << " per animal and condition, seeds "
       << freshSeed << " on).\n\n```\n";
    QString checkText;
    QTextStream check(&checkText);
    const int worseHere = printCheck(check, all, true) + printCheck(check, all, false);
    check << "\n";
    const int worseFresh = printCheck(check, fresh, true) + printCheck(check, fresh, false);
    check.flush();
    md << checkText << "```\n\n"
       << "Groups where the refined method is worse: " << worseHere << " on the cycles above, "
       << worseFresh << " on the other cycles.\n";
    md << "\n## Limits of this check\n\n"
       << "The truth comes from a model. In all conditions but *curved-rise* the amplitude "
          "rises in a straight line between SBP and DBP, which is what the refined method's "
          "line assumes, so on those cycles it is at an advantage. The *curved-rise* cycles "
          "test it on a shape it does not assume; before step 7 was added its SBP was 6.6 mmHg "
          "low there on average, against 2.3 for the documented method. No recordings of real "
          "animals with telemetry as reference were available for this report; they are "
          "needed before the figures can be claimed for animals.\n\n"
       << "The documented method's heart rate is the peak finder's. Under the *noise* "
          "condition its mean error is "
       << num(heartRateErrorPercent(conditionOf(all, QStringLiteral("noise")), 0), 1)
       << " % of the true rate: noise under the closed cuff lifts extra peaks above the finder's "
          "threshold and some of them are counted as beats. The refined method's rate, counted "
          "over the open artery only, is off by "
       << num(heartRateErrorPercent(conditionOf(all, QStringLiteral("noise")), 1), 2)
       << " % there.\n\n"
       << "Groups of 15 cycles are small, and a single cycle moves their SD. Of eleven other "
          "sets of 15 cycles per group (first seeds 5000, 9000, 13000, 21000, 30000, 50000, "
          "60000, 70000, 80000, 90000 and 100000), nine have no group where the refined method "
          "is worse. In the other two a group is a little worse in one figure while better in "
          "the others: under *curved-rise* the mean absolute DBP error (2.76 against 2.58 and "
          "2.68 against 1.94 mmHg: the fit's straight pieces put the rounder knee of a curved "
          "rise some 2.7 mmHg low, where the documented method scatters around it), and in the "
          "set from seed 60000 the SD of SBP under *ectopic* (3.24 against 3.02) and "
          "*slow-deflation* (1.43 against 1.24). That is why the comparison above is repeated "
          "on four times as many other cycles.\n";
    md.flush();
    QTextStream out(stdout);
    out << "wrote " << file.fileName() << " from " << all.size() << " cycles\n";
    out << checkText
        << (worseHere + worseFresh ? "the refined method is worse somewhere\n"
                                   : "the refined method is no worse anywhere\n");
    return 0;
}
