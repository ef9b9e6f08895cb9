#include "ipconfigurationwidget.h"

#include "DeviceLister.h"
#include "WaitBox.h"
#include "failurereports.h"
#include "recorddisplay.h"

#include "qtbase/failuretexts.h"
#include "qtbase/messages.h"
#include "tessal/devicechoice.h"

#include <utility>

namespace {

ForceIpReason reasonToForceIp(const std::exception& exception)
{
    const QStringList sentences = sentencesOf(exception);
    return {.sentence = sentences.isEmpty() ? IpConfigurationWidget::tr(
                                                  "The connection to the device could not be established.")
                                            : sentences.join(QLatin1Char(' ')),
            .technicalText = technicalTextOf(exception)};
}

/// Names the camera that is expected at the address of the next device; null for any camera.
void expectCamera(Tessal::IGigETransportLayer& transportLayer, const Tessal::COrvikGigEDeviceInfo* camera)
{
    if (auto* const choice = dynamic_cast<Tessal::IDeviceChoice*>(&transportLayer)) {
        choice->SetExpectedMac(camera != nullptr ? camera->GetMacAddress() : GenICam::gcstring());
    }
}

} // namespace

bool IpConfigurationWidget::openDevice(const QString& ipAddress)
{
    WaitBox waitBox(tr("Trying to establish a connection to the device..."), this);
    QString address = ipAddress;
    ForceIpReason reason;
    do {
        if (m_pDevice != nullptr) {
            // The pointer is cleared even if the transport layer throws, as in releaseDevice().
            DeviceLister::s_pTl->DestroyDevice(std::exchange(m_pDevice, nullptr));
        }
        waitBox.showWaitCursor();
        try {
            createAndOpenDevice(address);
            waitBox.restoreCursor();
            return true;
        } catch (const GenICam::LogicalErrorException& exception) {
            waitBox.restoreCursor();
            showException("openDevice", exception, nullptr);
            return false;
        } catch (const GenICam::AccessException&) {
            waitBox.restoreCursor();
            showWarningMessage(tr("Connection failed"), QString(),
                               tr("Access denied\nThe device is controlled by another application.\n"
                                  "Close the connection before changing the IP configuration."),
                               nullptr);
            return false;
        } catch (const GenICam::GenericException& exception) {
            waitBox.restoreCursor();
            qDebug("Could not open the device. Will try forceIP ('%s')", exception.GetDescription());
            reason = reasonToForceIp(exception);
        }
    } while (forceIpForConnection(address, reason));
    return false;
}

void IpConfigurationWidget::createAndOpenDevice(const QString& address)
{
    using enum Tessal::EDeviceAccessMode;
    Tessal::COrvikGigEDeviceInfo info(DeviceLister::s_pTl->CreateDeviceInfo());
    info.SetIpAddress(address.toLatin1().constData());
    expectCamera(*DeviceLister::s_pTl, GetSelectedDeviceInfo());
    Tessal::ITessalDevice* device = DeviceLister::s_pTl->CreateDevice(info);
    m_pDevice = dynamic_cast<Tessal::ITessalGigEDevice*>(device);
    if (m_pDevice == nullptr) {
        throw Translated(GenICam::ExceptionReporter<GenICam::LogicalErrorException>(__FILE__, __LINE__,
                                                                                    "LogicalErrorException")
                             .Report("The device must be a GEV Camera."),
                         tr("The device must be a GEV Camera."));
    }
    m_pDevice->Open(Stream | Control | Event);
}

void IpConfigurationWidget::closeDevice()
{
    if (m_pDevice == nullptr) {
        return;
    }
    logFailure("Failed to close device", "closeDevice", [this] {
        if (m_pDevice->IsOpen()) {
            m_pDevice->Close();
        }
    });
}

void IpConfigurationWidget::releaseDevice()
{
    // The pointer is cleared even if the transport layer throws: a device must not be destroyed twice.
    Tessal::ITessalGigEDevice* const device = std::exchange(m_pDevice, nullptr);
    if (device == nullptr) {
        return;
    }
    logFailure("Failed to destroy device", "doRefresh",
               [device] { DeviceLister::s_pTl->DestroyDevice(device); });
}
