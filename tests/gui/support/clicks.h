#pragma once

#include <QTest>
#include <QWidget>

/// Double-clicks as a user does. (QTest::mouseDClick() sends only the second press.)
inline void doubleClick(QWidget* place, QPoint at, Qt::KeyboardModifiers keys = {})
{
    QTest::mouseClick(place, Qt::LeftButton, keys, at);
    QTest::mouseDClick(place, Qt::LeftButton, keys, at);
    QTest::mouseRelease(place, Qt::LeftButton, keys, at);
}
