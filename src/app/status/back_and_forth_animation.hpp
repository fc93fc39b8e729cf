#pragma once

#include <QByteArray>
#include <QString>

class QAbstractAnimation;
class QObject;

namespace perchftp::app {

// Starts an endless animation of a numeric property from `from` to `to` and back, eased in and
// out each way, owned by the target and named so that it can be found and replaced by name.
QAbstractAnimation* startBackAndForth(QObject* target, QByteArray const& property, qreal from, qreal to,
    int millisecondsEachWay, QString const& name);

} // namespace perchftp::app
