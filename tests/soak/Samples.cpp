#include "Samples.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <limits>
#include <malloc.h>
#include <unistd.h>

namespace {

qint64 entries(const char *directory)
{
    return QDir(QString::fromLatin1(directory))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

qint64 heap()
{
    const auto info = ::mallinfo2();
    return qint64((info.uordblks + info.hblkhd) / 1024);
}

qint64 resident()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE) / 1024;
}

qint64 descriptors()
{
    return entries("/proc/self/fd");
}

qint64 threads()
{
    return entries("/proc/self/task");
}

/** Of the whole meter, so that orphaned processes are counted, too. */
qint64 processes()
{
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    return std::count_if(names.begin(), names.end(),
                         [](const QString &name) { return name.at(0).isDigit(); });
}

struct Quantity
{
    const char *name;
    qint64 (*value)();
    qint64 allowance; ///< growth that is allowed
};

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer's allocator keeps freed memory.
constexpr qint64 ofFragments = std::numeric_limits<qint64>::max() / 2;
#else
constexpr qint64 ofFragments = 1024;
#endif

const Quantity quantities[] = {
    {"heap in use, KiB", heap, 64},  {"resident memory, KiB", resident, ofFragments},
    {"descriptors", descriptors, 0}, {"threads", threads, 0},
    {"processes", processes, 0},
};

} // namespace

void Samples::take(double seconds)
{
    constexpr std::size_t most = 2000; // reserved at the start, so that it does not count as growth
    m_samples.reserve(most);
    if (m_samples.size() == most) {
        for (std::size_t i = 0; i < most / 2; ++i)
            m_samples[i] = m_samples[2 * i];
        m_samples.resize(most / 2);
    }
    Sample sample {seconds, {}};
    for (std::size_t i = 0; i < quantityCount; ++i)
        sample.values.at(i) = quantities[i].value();
    m_samples.push_back(sample);
}

qint64 Samples::least(std::size_t quantity, std::size_t quarter) const
{
    const std::size_t begin = m_samples.size() * quarter / 4;
    const std::size_t end = m_samples.size() * (quarter + 1) / 4;
    qint64 result = std::numeric_limits<qint64>::max();
    for (std::size_t i = begin; i < end; ++i)
        result = std::min(result, m_samples[i].values.at(quantity));
    return result;
}

QString Samples::growth() const
{
    QString result;
    for (std::size_t i = 0; i < quantityCount; ++i) {
        const qint64 before = least(i, 1);
        const qint64 after = least(i, 3);
        if (after > before + quantities[i].allowance)
            result += QStringLiteral("%1: %2, then %3\n")
                          .arg(QString::fromLatin1(quantities[i].name))
                          .arg(before)
                          .arg(after);
    }
    return result;
}

QString Samples::summary() const
{
    QString result = QStringLiteral("%1 samples").arg(m_samples.size());
    for (std::size_t i = 0; i < quantityCount; ++i)
        result += QStringLiteral("; %1 %2, then %3")
                      .arg(QString::fromLatin1(quantities[i].name))
                      .arg(least(i, 1))
                      .arg(least(i, 3));
    return result;
}

QByteArray Samples::svg(const QString &title) const
{
    constexpr int width = 800;
    constexpr int height = 100;
    constexpr int step = 140;
    const double whole = m_samples.back().seconds;
    QString result = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"860\" "
                                    "height=\"%1\" font-family=\"sans-serif\" font-size=\"14\">\n"
                                    "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
                                    "<text x=\"30\" y=\"24\">%2, %3 s</text>\n")
                         .arg(quantityCount * step + 50)
                         .arg(title)
                         .arg(whole, 0, 'f', 0);
    for (std::size_t i = 0; i < quantityCount; ++i) {
        const auto byValue = [i](const Sample &a, const Sample &b) {
            return a.values.at(i) < b.values.at(i);
        };
        const auto most =
            std::max_element(m_samples.begin(), m_samples.end(), byValue)->values.at(i);
        const int bottom = int(i) * step + 40 + height;
        result += QStringLiteral("<text x=\"30\" y=\"%1\">%2, 0 to %3</text>\n"
                                 "<polyline fill=\"none\" stroke=\"#1f5fa8\" points=\"")
                      .arg(bottom + 18)
                      .arg(QString::fromLatin1(quantities[i].name))
                      .arg(most);
        for (const Sample &sample : m_samples)
            result += QStringLiteral("%1,%2 ")
                          .arg(30 + width * sample.seconds / whole, 0, 'f', 1)
                          .arg(bottom
                                   - height * double(sample.values.at(i))
                                       / double(std::max<qint64>(most, 1)),
                               0, 'f', 1);
        result += QStringLiteral("\"/>\n");
    }
    return result.toUtf8() + "</svg>\n";
}
