#pragma once

#include "apply.h"

namespace cli {

/// To standard output, at once. Returns false, with the reason in errno, if not all could be written.
bool write(const QString& text);
/// A line on standard error, after the program's name.
void complain(const QString& text);

[[nodiscard]] bool isTerminal();
/// The columns of the terminal; 0 where standard output is none.
[[nodiscard]] int terminalWidth();

enum class Format { Table, Json, Csv };

/// What was found: for people, in lines as wide as `width` at most, 0 for any; or for programs.
[[nodiscard]] QString formatList(const Network& network, Format format, int width);

/// Reports the progress of a plan: a line for each camera, or, on a terminal, one line of counts that
/// changes and the cameras that failed.
class Progress
{
public:
    void show(int finished, int restarting, int all);
    void finished(const Camera& camera, Outcome outcome, const QString& text);
    /// Writes the summary; if some cameras are not done, first the lines held back for those that are.
    /// Returns whether all are done.
    bool close();

private:
    void clearLine();

    bool m_hasLine = false;
    QStringList m_deferredLines;
    std::map<Outcome, int> m_counts;
};

} // namespace cli
