#include "benchmarks/support/ProcessUsage.h"

#include <QDir>
#include <QFile>
#include <stdexcept>

namespace {

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return file.readAll();
}

/// The number behind a label of the form "label:  123".
double numberAfter(const QByteArray& text, const QByteArray& label) {
    const qsizetype start = text.indexOf(label + ':');
    if (start < 0) throw std::runtime_error("no " + label.toStdString());
    const qsizetype end = text.indexOf('\n', start);
    const QByteArray line = text.mid(start + label.size() + 1, end - start - label.size() - 1);
    return line.simplified().split(' ').first().toDouble();
}

}  // namespace

ProcessUsage ProcessUsage::of(pid_t process) {
    const QString tasks = QStringLiteral("/proc/%1/task").arg(process);
    ProcessUsage usage;
    const QStringList threads = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (threads.isEmpty()) throw std::runtime_error("no such process");
    for (const QString& thread : threads) {
        const QString folder = tasks + QLatin1Char('/') + thread;
        // In nanoseconds, which the ticks of "stat" are too coarse for.
        const QByteArray onProcessor = contentsOf(folder + QStringLiteral("/schedstat"));
        usage.processorMilliseconds += onProcessor.split(' ').first().toDouble() / 1e6;
        usage.sleeps +=
            numberAfter(contentsOf(folder + QStringLiteral("/status")), "voluntary_ctxt_switches");
    }
    return usage;
}

ProcessMemory ProcessMemory::of(pid_t process) {
    const QByteArray rollup = contentsOf(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    return {numberAfter(rollup, "Pss") / 1024, numberAfter(rollup, "Rss") / 1024};
}
