#pragma once

#include "wire/tapdevice.h"

#include <QStringList>

/// A host adapter with known addresses, up and running while this object lives. Only for a network namespace
/// of our own, as scripts/lab gives one.
class GuiAdapter
{
public:
    /// Addresses with prefix, as in "192.168.1.5/24". Throws std::runtime_error when the host refuses.
    GuiAdapter(const QString& name, const QStringList& addresses, const QString& mac);

private:
    wire::TapDevice m_tap;
};
