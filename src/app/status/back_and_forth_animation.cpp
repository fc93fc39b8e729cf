#include "app/status/back_and_forth_animation.hpp"

#include <QPropertyAnimation>
#include <QSequentialAnimationGroup>

namespace perchftp::app {

namespace {

QPropertyAnimation* leg(QObject* target, QByteArray const& property, qreal from, qreal to, int milliseconds)
{
    auto* animation = new QPropertyAnimation(target, property);
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setDuration(milliseconds);
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    return animation;
}

} // namespace

QAbstractAnimation* startBackAndForth(QObject* target, QByteArray const& property, qreal from, qreal to,
    int millisecondsEachWay, QString const& name)
{
    auto* group = new QSequentialAnimationGroup(target);
    group->setObjectName(name);
    group->addAnimation(leg(target, property, from, to, millisecondsEachWay));
    group->addAnimation(leg(target, property, to, from, millisecondsEachWay));
    group->setLoopCount(-1);
    group->start();
    return group;
}

} // namespace perchftp::app
