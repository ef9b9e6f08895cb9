#pragma once

#include <QUdpSocket>

/// Asks cameras as another program would, with none of the code under test.
class OtherProgram
{
public:
    /// Sends a message to the control port and describes the answer as packets::describe() does; "no answer"
    /// if none comes within three seconds.
    [[nodiscard]] QString ask(const QString& camera, const QByteArray& message);

private:
    QUdpSocket m_socket;
    std::uint16_t m_id = 0; // of the latest message
};
