/**
 * @file
 * Checks QtForThreadSanitizer.cpp: with the argument "ordered" the thread sanitizer must report
 * nothing, with "racing" it must report the race.
 */

#include <QtConcurrentRun>

#include <cstring>

int main(int count, char **words)
{
    if (count != 2)
        return 64;
    const bool isRacing = std::strcmp(words[1], "racing") == 0;
    for (int i = 0; i < 50; ++i) {
        int number = 1;
        QFuture<void> task = QtConcurrent::run([&number] { ++number; });
        if (isRacing)
            ++number;
        task.waitForFinished();
        ++number;
        for (int j = 0; j < 4; ++j) {
            QtConcurrent::run(QThreadPool::globalInstance(),
                              [captured = QByteArray(100, 'x')] { return captured.size(); });
        }
        QThreadPool::globalInstance()->waitForDone();
    }
    return 0;
}
