#pragma once

#include <QString>

class Context;

/** A reading as it is shown and judged. The library rounds, words and reads back. */
struct Result
{
    enum Verdict
    {
        NotJudged,
        Pass,
        Fail
    };

    /** @param value in ohms, henries or degrees Celsius; NaN for none */
    Result(Context &context, float value);

    /** "≥ 0.1 mΩ   ≤ 2 mΩ", or one of the two; empty without a limit. */
    static QString limitText(Context &context);

    QString text;
    Verdict verdict = NotJudged;
};
