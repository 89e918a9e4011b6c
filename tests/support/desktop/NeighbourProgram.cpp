#include "support/desktop/NeighbourProgram.h"

#include <QFile>

using namespace Qt::Literals::StringLiterals;

NeighbourProgram::NeighbourProgram(const QProcessEnvironment& environment,
                                   const QString& windowClass, int windowCount)
    : m_process(QStringLiteral(NEIGHBOUR_PROGRAM),
                {u"windows"_s, windowClass, QString::number(windowCount)}, environment) {
    for (const QByteArray& id : m_process.waitForFirstLine().simplified().split(' '))
        m_windows.push_back(id.toUInt());
}

std::unique_ptr<ChildProcess> NeighbourProgram::start(const QProcessEnvironment& environment,
                                                      const QString& folder, const QString& name,
                                                      const QStringList& arguments) {
    const QString path = folder + u'/' + name;
    if (!QFile::exists(path)) QFile::copy(QStringLiteral(NEIGHBOUR_PROGRAM), path);
    return std::make_unique<ChildProcess>(path, arguments, environment);
}
