#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

namespace tarn {

/// Does something to the modal window of that class that comes next.
template <class W> void WithNext(const std::function<void(W&)>& action) {
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        auto* const window = qobject_cast<W*>(QApplication::activeModalWidget());
        if (!window) return;
        timer->deleteLater();
        timer->stop();
        action(*window);
    });
    timer->start(0);
}

} // namespace tarn
