#pragma once

#include "genicam/exceptions.h"
#include "qtbase/failuretexts.h"
#include "tessal/transportlayer.h"

/// The camera layer as the window has it, while this object lives.
class CameraLayer
{
public:
    CameraLayer() : m_made(Tessal::CTlFactory::GetInstance().CreateTl(Tessal::GigEDeviceClass)) {}
    Q_DISABLE_COPY_MOVE(CameraLayer)
    ~CameraLayer() { Tessal::CTlFactory::GetInstance().ReleaseTl(m_made); }

    [[nodiscard]] Tessal::IGigETransportLayer& operator*() const
    {
        return dynamic_cast<Tessal::IGigETransportLayer&>(*m_made);
    }
    [[nodiscard]] Tessal::IGigETransportLayer* operator->() const { return &**this; }

private:
    Tessal::ITransportLayer* m_made;
};

/// What the user is told of an operation that fails; "no failure" if it does not.
template <typename Operation>
QString failureOf(const Operation& operation)
try {
    operation();
    return "no failure";
} catch (const GenICam::GenericException& failure) {
    return sentencesOf(failure).value(0, failure.GetDescription());
}
