#pragma once

#include <QByteArray>

// Numbers as text for files a spreadsheet or a statistician reads: the fewest digits that read
// back as exactly the same double, with a point as decimal mark, written into a caller's buffer so
// a table of millions of cells allocates nothing per cell.
//
// Values from a billionth up to a thousand million million are written as plain decimals
// ("0.0000299", "1000000"), the way a spreadsheet shows them; an exponent there would make the
// same column read in two different ways. Outside that range the exponent form is kept
// ("1e-12", "1e+20"), as a spreadsheet shows those too.
class DecimalText
{
public:
    // Room for the longest text write() produces.
    static constexpr int kMaxLength = 64;

    // Writes `value` into `out` (at least kMaxLength bytes) and returns the number of bytes;
    // 0 for NaN and the infinities, which have no cell text.
    static int write(double value, char *out);
    static int write(qlonglong value, char *out);
    static int write(qulonglong value, char *out);
    // The same as a byte array, for the places that are not a hot loop.
    static QByteArray of(double value);
};
