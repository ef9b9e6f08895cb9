#pragma once

#include "tessal/transportlayer.h"

#include <QObject>

#include <atomic>

/// Names of the properties that the lister adds to the SDK's records.
namespace ListerKey {
inline constexpr char InterfaceName[] = "IF_~_Name";     // Adapter through which the camera was found.
inline constexpr char Accessible[] = "DEV_~_Accessible"; // Tessal::Accessibility code in decimal.
} // namespace ListerKey

/// Finds the cameras that the host can see. All listers share one transport layer, created by the first
/// discovery and released by the last lister's destructor.
class DeviceLister : public QObject
{
public:
    DeviceLister();
    DeviceLister(const DeviceLister&) = delete;
    DeviceLister& operator=(const DeviceLister&) = delete;
    ~DeviceLister() override;

    /// Replaces m_devices by a new discovery. Throws GenICam::RuntimeException when there is no transport
    /// layer, and whatever the enumerations and the accessibility query throw. m_devices is unchanged if
    /// the first enumeration throws; after a later failure it is empty or partly filled.
    void discoverAllDevices();

    /// Creates the shared transport layer if there is none. Throws GenICam::RuntimeException if that fails.
    static void createTransportLayer();

    /// Patches the records of m_devices with that MAC address; a null pointer leaves its value unchanged.
    /// With `updateAccessibility`, queries the accessibility of the first of them again, and throws what that
    /// query throws. Returns the number of patched records.
    int updateDeviceInfo(const char* macAddress, const char* ipConfigCurrent, const char* ipAddress,
                         const char* subnetMask, const char* defaultGateway, bool updateAccessibility);

    /// Merges the named properties of `source` into `target`, joining different values with `separator`;
    /// returns the number of properties written. The second form, which nothing calls, takes all names that
    /// `target` has. Without a separator (null) values are joined as they are, duplicates too.
    static int mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                               const char* separator, const GenICam::gcstring_vector& names,
                               bool allowDuplicates);
    static int mergeProperties(Tessal::IProperties& target, const Tessal::IProperties& source,
                               const char* separator, bool allowDuplicates);
    /// Whether `value` ends a part of `multipartValue`. A plain substring test, so "1.1.1.1" is found in
    /// "11.1.1.1".
    static bool ValExistsInMultipartPropertyValue(const GenICam::gcstring& multipartValue,
                                                  const GenICam::gcstring& value, const char* separator);

    Tessal::DeviceInfoList m_devices; // A tree row refers to its camera by the position in this list.

    static std::atomic<std::int32_t> s_ref; // Number of listers.
    static Tessal::IGigETransportLayer* s_pTl;
};
