#pragma once

#include <QStringList>

/// A host adapter with known addresses, up and running while this object lives. Only for a network namespace
/// of our own, as scripts/lab gives one.
class GuiAdapter
{
public:
    /// Addresses with prefix, as in "192.168.1.5/24". Throws std::runtime_error when the host refuses.
    GuiAdapter(const QString& name, const QStringList& addresses, const QString& mac);
    GuiAdapter(const GuiAdapter&) = delete;
    GuiAdapter& operator=(const GuiAdapter&) = delete;
    ~GuiAdapter();

private:
    int m_tap;
};
