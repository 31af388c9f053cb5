#include "support/CardRecord.h"

#include "support/Meter.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

using Step = CardRecord::Step;

namespace {

/** The C library's own function of that name. */
template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool isOfDirectory(const Step &step)
{
    return step.kind == Step::Create || step.kind == Step::Remove || step.kind == Step::Rename;
}

/** Files that are open, and their names, while a record is made. */
class Recorder
{
public:
    Recorder(std::vector<Step> &steps, const QString &directory, const QMap<QString, int> &names)
        : m_steps(steps)
        , m_directory(QDir::cleanPath(directory))
        , m_names(names)
        , m_nextFile(int(names.size()))
    { }

    void opened(int descriptor, const char *path, int flags)
    {
        const QString name = nameOf(path);
        if (descriptor < 0 || name.isNull())
            return;
        if ((flags & O_TMPFILE) == O_TMPFILE) {
            m_open[descriptor] = m_nextFile++;
        } else if (name.isEmpty()) {
            m_open[descriptor] = directoryItself;
        } else {
            if (!m_names.contains(name))
                named(m_nextFile++, name);
            m_open[descriptor] = m_names.value(name);
            if (flags & O_TRUNC)
                add({Step::Resize, m_names.value(name)});
        }
    }

    void closed(int descriptor) { m_open.remove(descriptor); }

    void written(int descriptor, const void *bytes, qint64 size, qint64 position)
    {
        constexpr qint64 sector = 512;
        if (!isFile(descriptor))
            return;
        const QByteArray all(static_cast<const char *>(bytes), int(size));
        for (qint64 begin = position; begin < position + size;) {
            const qint64 end = qMin((begin / sector + 1) * sector, position + size);
            Step step {Step::Write, m_open.value(descriptor)};
            step.position = begin;
            step.bytes = all.mid(int(begin - position), int(end - begin));
            add(step);
            begin = end;
        }
    }

    void resized(int descriptor, qint64 size)
    {
        Step step {Step::Resize, m_open.value(descriptor)};
        step.position = size;
        if (isFile(descriptor))
            add(step);
    }

    void flushed(int descriptor)
    {
        if (isFile(descriptor))
            add({Step::FlushFile, m_open.value(descriptor)});
        else if (m_open.contains(descriptor))
            add({Step::FlushDirectory});
    }

    void linked(const char *descriptorPath, const char *path)
    {
        const int descriptor = QByteArray(descriptorPath).split('/').last().toInt();
        if (isFile(descriptor) && !nameOf(path).isNull())
            named(m_open.value(descriptor), nameOf(path));
    }

    void removed(const char *path)
    {
        const QString name = nameOf(path);
        if (m_names.remove(name) != 0)
            add({Step::Remove, 0, name});
    }

    void renamed(const char *from, const char *to)
    {
        const QString name = nameOf(from);
        if (!m_names.contains(name))
            return;
        m_names[nameOf(to)] = m_names.take(name);
        add({Step::Rename, 0, name, nameOf(to)});
    }

private:
    static constexpr int directoryItself = -1;

    bool isFile(int descriptor) const { return m_open.value(descriptor, directoryItself) >= 0; }

    /** Empty for the directory itself, null for a path outside of it. */
    QString nameOf(const char *path) const
    {
        const QString clean = QDir::cleanPath(QFile::decodeName(path));
        if (clean == m_directory)
            return QLatin1String("");
        const QString prefix = m_directory + '/';
        return clean.startsWith(prefix) ? clean.mid(prefix.size()) : QString();
    }

    void named(int file, const QString &name)
    {
        m_names[name] = file;
        add({Step::Create, file, name});
    }

    void add(const Step &step) { m_steps.push_back(step); }

    std::vector<Step> &m_steps;
    const QString m_directory;
    QMap<QString, int> m_names;
    QMap<int, int> m_open;
    int m_nextFile;
};

Recorder *s_recorder = nullptr;

} // namespace

CardRecord::CardRecord(const QString &directory)
{
    for (const QString &name : QDir(directory).entryList(QDir::Files | QDir::Hidden)) {
        m_namesAtFirst[name] = int(m_filesAtFirst.size());
        m_filesAtFirst[m_namesAtFirst[name]] = Meter::readFile(directory + '/' + name);
    }
    s_recorder = new Recorder(m_steps, directory, m_namesAtFirst);
}

CardRecord::~CardRecord()
{
    stop();
}

void CardRecord::answered()
{
    m_steps.push_back({Step::Answer});
}

void CardRecord::stop()
{
    delete s_recorder;
    s_recorder = nullptr;
}

namespace {

/** Content of a card: names, and the bytes of files. */
struct Card
{
    QMap<QString, int> names;
    QMap<int, QByteArray> files;

    void apply(const Step &step)
    {
        QByteArray &bytes = files[step.file];
        const int end = int(step.position) + int(step.bytes.size());
        switch (step.kind) {
        case Step::Create:
            names[step.name] = step.file;
            break;
        case Step::Remove:
            names.remove(step.name);
            break;
        case Step::Rename:
            if (names.contains(step.name))
                names[step.newName] = names.take(step.name);
            break;
        case Step::Write:
            if (bytes.size() < end)
                bytes.append(QByteArray(end - bytes.size(), '\0'));
            bytes.replace(int(step.position), step.bytes.size(), step.bytes);
            break;
        case Step::Resize:
            bytes = bytes.leftJustified(int(step.position), '\0', true);
            break;
        case Step::FlushFile:
        case Step::FlushDirectory:
        case Step::Answer:
            break;
        }
    }

    CardRecord::Files content() const
    {
        CardRecord::Files content;
        for (auto name = names.begin(); name != names.end(); ++name)
            content[name.key()] = files.value(name.value());
        return content;
    }
};

/**
 * Which of a number of steps have reached the card: every combination of a few steps, random ones
 * of many.
 */
std::vector<std::vector<bool>> combinations(size_t count)
{
    constexpr size_t few = 6;
    constexpr int samples = 20;
    std::vector<std::vector<bool>> all;
    if (count <= few) {
        for (unsigned mask = 0; mask < 1U << count; ++mask) {
            all.emplace_back(count);
            for (size_t i = 0; i < count; ++i)
                all.back()[i] = (mask >> i & 1U) != 0;
        }
        return all;
    }
    for (size_t i = 0; i <= count; ++i) {
        std::vector<bool> firstOnes(count);
        std::fill_n(firstOnes.begin(), i, true);
        all.push_back(firstOnes);
        for (const bool others : {false, true}) {
            all.emplace_back(count, others);
            all.back()[i % count] = !others;
        }
    }
    QRandomGenerator random(quint32 {1});
    for (int i = 0; i < samples; ++i) {
        all.emplace_back(count);
        for (size_t step = 0; step < count; ++step)
            all.back()[step] = random.bounded(2) == 1;
    }
    return all;
}

} // namespace

namespace {

/** A number for the content of a card; two contents hardly ever have the same. */
size_t hashOf(const CardRecord::Files &files)
{
    const auto hash = [](const void *bytes, int size) {
        return std::hash<std::string_view> {}({static_cast<const char *>(bytes), size_t(size)});
    };
    constexpr size_t factor = 0x9e3779b97f4a7c15U;
    size_t all = 0;
    for (auto file = files.begin(); file != files.end(); ++file) {
        all = all * factor + hash(file.key().constData(), 2 * int(file.key().size()));
        all = all * factor + hash(file.value().constData(), int(file.value().size()));
    }
    return all;
}

/** Makes @p files the only files of the directory. */
void writeFiles(const QString &directory, const CardRecord::Files &files)
{
    for (const QString &name : QDir(directory).entryList(QDir::Files | QDir::Hidden)) {
        if (!files.contains(name))
            QFile::remove(directory + '/' + name);
    }
    for (auto file = files.begin(); file != files.end(); ++file)
        Meter::writeFile(directory + '/' + file.key(), file.value());
}

/** Applies and removes the steps that a flush brings to the card. */
void applyFlush(Card &card, std::vector<Step> &pending, const Step &flush)
{
    const auto isFlushed = [&flush](const Step &step) {
        return flush.kind == Step::FlushDirectory ? isOfDirectory(step)
                                                  : !isOfDirectory(step) && step.file == flush.file;
    };
    for (const Step &step : pending) {
        if (isFlushed(step))
            card.apply(step);
    }
    pending.erase(std::remove_if(pending.begin(), pending.end(), isFlushed), pending.end());
}

} // namespace

int CardRecord::forEachCut(const QString &directory,
                           const std::function<void(int answers)> &check) const
{
    Card card {m_namesAtFirst, m_filesAtFirst};
    std::vector<Step> pending;
    int answers = 0;
    std::set<std::pair<int, size_t>> seen;
    QDir().mkpath(directory);
    const auto tryCuts = [&] {
        for (const std::vector<bool> &combination : combinations(pending.size())) {
            Card cut = card;
            for (size_t i = 0; i < pending.size(); ++i) {
                if (combination[i])
                    cut.apply(pending[i]);
            }
            const Files files = cut.content();
            if (!seen.emplace(answers, hashOf(files)).second)
                continue;
            writeFiles(directory, files);
            check(answers);
        }
    };
    tryCuts();
    for (const Step &step : m_steps) {
        if (step.kind == Step::Answer)
            ++answers;
        else if (step.kind == Step::FlushFile || step.kind == Step::FlushDirectory)
            applyFlush(card, pending, step);
        else
            pending.push_back(step);
        tryCuts();
    }
    return int(seen.size());
}

// --- the C library's functions

extern "C" {

int open64(const char *path, int flags, ...)
{
    static const auto original = next<int (*)(const char *, int, mode_t)>("open64");
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = mode_t(va_arg(arguments, unsigned));
    va_end(arguments);
    const int descriptor = original(path, flags, mode);
    if (s_recorder)
        s_recorder->opened(descriptor, path, flags);
    return descriptor;
}

int open(const char *path, int flags, ...)
{
    static const auto original = next<int (*)(const char *, int, mode_t)>("open");
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = mode_t(va_arg(arguments, unsigned));
    va_end(arguments);
    const int descriptor = original(path, flags, mode);
    if (s_recorder)
        s_recorder->opened(descriptor, path, flags);
    return descriptor;
}

int close(int file)
{
    static const auto original = next<decltype(&close)>("close");
    if (s_recorder)
        s_recorder->closed(file);
    return original(file);
}

ssize_t write(int file, const void *bytes, size_t size)
{
    static const auto original = next<decltype(&write)>("write");
    const off_t position = s_recorder ? ::lseek(file, 0, SEEK_CUR) : 0;
    const ssize_t written = original(file, bytes, size);
    if (s_recorder && written > 0)
        s_recorder->written(file, bytes, written, position);
    return written;
}

ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t position)
{
    static const auto original = next<decltype(&pwrite64)>("pwrite64");
    const ssize_t written = original(file, bytes, size, position);
    if (s_recorder && written > 0)
        s_recorder->written(file, bytes, written, position);
    return written;
}

int ftruncate64(int file, off64_t size) noexcept
{
    static const auto original = next<decltype(&ftruncate64)>("ftruncate64");
    const int result = original(file, size);
    if (s_recorder && result == 0)
        s_recorder->resized(file, size);
    return result;
}

int fsync(int file)
{
    static const auto original = next<decltype(&fsync)>("fsync");
    if (s_recorder)
        s_recorder->flushed(file);
    return original(file);
}

int fdatasync(int file)
{
    static const auto original = next<decltype(&fdatasync)>("fdatasync");
    if (s_recorder)
        s_recorder->flushed(file);
    return original(file);
}

int unlink(const char *path) noexcept
{
    static const auto original = next<decltype(&unlink)>("unlink");
    const int result = original(path);
    if (s_recorder && result == 0)
        s_recorder->removed(path);
    return result;
}

int rename(const char *from, const char *to) noexcept
{
    static const auto original = next<decltype(&rename)>("rename");
    const int result = original(from, to);
    if (s_recorder && result == 0)
        s_recorder->renamed(from, to);
    return result;
}

int linkat(int fromDirectory, const char *from, int toDirectory, const char *to, int flags) noexcept
{
    static const auto original = next<decltype(&linkat)>("linkat");
    const int result = original(fromDirectory, from, toDirectory, to, flags);
    if (s_recorder && result == 0)
        s_recorder->linked(from, to);
    return result;
}

} // extern "C"
