// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <optional>

class QLabel;
class QProgressBar;

namespace vorlane {

// The last page of a sheet that runs something long (an import, a backup, a restore): a line
// saying what is being done over a progress bar while it runs, then the outcome in bold alone.
// Screen readers find the bar and the outcome under the names given. Main thread.
class RunProgress final : public QWidget {
public:
    RunProgress(const QString& barName, const QString& outcomeName, QWidget* parent = nullptr);

    // Running: `text` over the bar at `fraction` (0 to 1), or a busy bar when the length of the
    // work cannot be told in advance.
    void showRunning(const QString& text, std::optional<double> fraction);
    // Finished: `outcome` takes the place of the line and the bar.
    void showOutcome(const QString& outcome);

private:
    QLabel* m_text;
    QProgressBar* m_bar;
    QLabel* m_outcome;
};

} // namespace vorlane
