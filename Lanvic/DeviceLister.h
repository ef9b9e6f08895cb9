#pragma once

#include "tessal/transportlayer.h"

#include <QObject>

#include <atomic>

/// Names of the properties that the lister adds to the SDK's records.
namespace ListerKey {
inline constexpr char InterfaceName[] = "IF_~_Name";     // adapter through which the camera was found
inline constexpr char Accessible[] = "DEV_~_Accessible"; // Tessal::Accessibility code in decimal
} // namespace ListerKey

/// Finds the cameras that the host can see. All listers share one transport layer, made by the first
/// discovery and given back by the last lister's destructor.
class DeviceLister : public QObject
{
public:
    DeviceLister();
    DeviceLister(const DeviceLister&) = delete;
    DeviceLister& operator=(const DeviceLister&) = delete;
    ~DeviceLister() override;

    /// Replaces m_devices by a fresh discovery. Throws GenICam::RuntimeException when there is no transport
    /// layer, and whatever the enumerations and the accessibility query throw. m_devices is as before when
    /// the first enumeration did not return; later it is empty or partly filled.
    void discoverAllDevices();

    /// Makes the shared transport layer if there is none. Throws GenICam::RuntimeException when that fails.
    static void createTransportLayer();

    /// Patches the records of m_devices with that MAC; a null pointer leaves its value. With
    /// `updateAccessibility`, asks the first of them for its accessibility again, and throws what that query
    /// throws. Returns how many records were patched.
    int updateDeviceInfo(const char* macAddress, const char* ipConfigCurrent, const char* ipAddress,
                         const char* subnetMask, const char* defaultGateway, bool updateAccessibility);

    /// Merges the named properties of `source` into `target`, joining different values with `separator`;
    /// returns how many were written. The second form takes all names that `target` has. Without a separator
    /// (null) values are joined as they are, duplicates too.
    static int mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                               const char* separator, const GenICam::gcstring_vector& names,
                               bool allowDuplicates);
    static int mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                               const char* separator, bool allowDuplicates);
    /// Whether `value` ends a part of `multipartValue`. A plain substring test, so "1.1.1.1" is found in
    /// "11.1.1.1".
    static bool ValExistsInMultipartPropertyValue(const GenICam::gcstring& multipartValue,
                                                  const GenICam::gcstring& value, const char* separator);

    Tessal::DeviceInfoList m_devices; // a tree row refers to its camera by the position in this list

    static std::atomic<std::int32_t> s_ref; // living listers
    static Tessal::IGigETransportLayer* s_pTl;
};
