#pragma once

#include "queue/queue_store.h"

#include <QHash>
#include <QObject>
#include <QUuid>

#include <optional>

/// How far the runs that are under way have come, all their rows together, and how they ended.
/// Main thread. The controller outlives it.
namespace reelcrate {

class Controller;

class RunProgress : public QObject {
    Q_OBJECT

public:
    explicit RunProgress(Controller& controller, QObject* parent = nullptr);

    /// 0 to 1; absent while no run is under way.
    std::optional<double> fraction() const;

Q_SIGNALS:
    void changed();
    /// The last run has ended; its rows, by how they ended.
    void finished(int complete, int needAttention);

private:
    void followRow(qsizetype index, QueueStore::Fields fields);
    void followRuns();

    Controller& m_controller;
    QHash<QUuid, double> m_shares;  ///< of each row, how much of it is done
    double m_sum = 0;
    double m_furthest = 0;  ///< rows that join later do not make it run backwards
};

}  // namespace reelcrate
