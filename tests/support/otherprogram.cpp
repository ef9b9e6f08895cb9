#include "support/otherprogram.h"

#include "support/packets.h"

#include <QNetworkDatagram>

QString OtherProgram::ask(const QString& camera, const QByteArray& message)
{
    m_socket.writeDatagram(packets::withId(message, ++m_id), QHostAddress(camera), gvcp::Port);
    return m_socket.waitForReadyRead(3000) ? packets::describe(m_socket.receiveDatagram().data(), m_id)
                                           : "no answer";
}
