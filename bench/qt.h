// Qt's classes, where the build has found them: QT(loop) is the loop, or null.
#ifndef MIROXGCL_BENCH_QT_H
#define MIROXGCL_BENCH_QT_H

#ifdef HAS_QT
#include <QByteArray>
#include <QList>
#define QT(...) __VA_ARGS__
#else
#define QT(...) nullptr
#endif

#endif
