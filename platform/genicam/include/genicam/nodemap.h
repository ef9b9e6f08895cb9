#pragma once

#include "genicam/exceptions.h"
#include "genicam/gcstring.h"

#include <cstdint>

namespace GenApi {

/// Base of the node interfaces, so that a node can be cast to another of its interfaces.
class IBase
{
public:
    IBase() = default;
    IBase(const IBase&) = delete;
    IBase& operator=(const IBase&) = delete;
    virtual ~IBase() = default;
};

/// A named feature of the camera's description.
class INode : virtual public IBase
{
public:
    [[nodiscard]] virtual GenICam::gcstring GetName() const = 0;
};

/// A feature whose value is a text of at most GetMaxLength() bytes of UTF-8.
class IString : virtual public IBase
{
public:
    /// Writes the text to the camera. With `verify`, first checks that the feature can be written
    /// (AccessException) and that the text fits (InvalidArgumentException). Transport failures pass through.
    virtual void SetValue(const GenICam::gcstring& value, bool verify = true) = 0;
    [[nodiscard]] virtual GenICam::gcstring GetValue(bool verify = false) = 0;
    [[nodiscard]] virtual std::int64_t GetMaxLength() = 0;
};

/// The features of one camera.
class INodeMap
{
public:
    INodeMap() = default;
    INodeMap(const INodeMap&) = delete;
    INodeMap& operator=(const INodeMap&) = delete;
    virtual ~INodeMap() = default;

    /// The node of that name, owned by the map, or null.
    [[nodiscard]] virtual INode* GetNode(const GenICam::gcstring& name) const = 0;
};

/// Refers to a node through interface T; empty if the node is missing or does not offer T. Does not own it.
template <typename T, typename B = IBase>
class CPointer
{
public:
    CPointer() = default;
    CPointer(B* node) : m_pointer(dynamic_cast<T*>(node)) {}

    [[nodiscard]] bool IsValid() const noexcept { return m_pointer != nullptr; }
    explicit operator bool() const noexcept { return IsValid(); }

    /// Throws GenICam::LogicalErrorException "NULL pointer dereferenced" if empty.
    T* operator->() const
    {
        if (m_pointer == nullptr) {
            throw GenICam::ExceptionReporter<GenICam::LogicalErrorException>(__FILE__, __LINE__,
                                                                             "LogicalErrorException")
                .Report("NULL pointer dereferenced");
        }
        return m_pointer;
    }

private:
    T* m_pointer = nullptr;
};

} // namespace GenApi
