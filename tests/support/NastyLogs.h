#pragma once

#include <QByteArray>
#include <QList>

#include <random>

namespace tallyglass::test {

/// Makes log files of everything that ever troubled a reader; the same ones from the same seed.
class NastyLogs
{
public:
    explicit NastyLogs(unsigned seed)
        : m_random(seed)
    {
    }

    /// One record, or something like it, on each line.
    QByteArray lines();
    /// One list of records.
    QByteArray document();

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }
    QByteArray oneOf(const QList<QByteArray> &choices);
    QByteArray filler();
    QByteArray record();
    QByteArray line();
    QByteArray damaged(QByteArray content);

    std::mt19937 m_random;
};

} // namespace tallyglass::test
