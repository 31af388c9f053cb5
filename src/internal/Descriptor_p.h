#pragma once

#include <QtGlobal>

#include <unistd.h>

namespace Internal {

/** A file descriptor that is closed with its owner; -1 for none. */
class Descriptor
{
public:
    explicit Descriptor(int number = -1) : m_number(number) { }
    ~Descriptor() { close(); }
    Q_DISABLE_COPY_MOVE(Descriptor)

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    void reset(int number)
    {
        if (isOpen())
            ::close(m_number);
        m_number = number;
    }
    void close() { reset(-1); }

private:
    int m_number;
};

} // namespace Internal
