#pragma once

#include <QPointer>
#include <QValidator>

class QLineEdit;

/// Accepts a dotted quad that is a host address under the mask now in the given field: its host part is
/// neither all zeros nor all ones, masks of 31 and 32 bits excepted. While that field holds no mask, any
/// dotted quad but 0.0.0.0 will do. Other text of digits and dots is Intermediate, so that no edit on the way
/// to an address is refused; any other character is Invalid.
class QIpAddressWithNetmaskValidator : public QValidator
{
    Q_OBJECT

public:
    QIpAddressWithNetmaskValidator(QLineEdit* netmaskEdit, QObject* parent);

    /// Whether an empty text and 0.0.0.0 are accepted too. Off at first.
    void setAllowNullAddress(bool allow) { m_allowNullAddress = allow; }

    State validate(QString& input, int& pos) const override;

private:
    QPointer<QLineEdit> m_netmaskEdit;
    bool m_allowNullAddress = false;
};

/// Accepts a dotted quad that is a contiguous netmask of at least one bit. Other text of digits and dots, or
/// of digits after a slash, is Intermediate; any other character is Invalid.
class QIpNetmaskValidator : public QValidator
{
    Q_OBJECT

public:
    explicit QIpNetmaskValidator(QObject* parent);

    State validate(QString& input, int& pos) const override;
    /// Turns "24" and "/24" into 255.255.255.0 and strips leading zeros of the parts; leaves what it cannot
    /// read.
    void fixup(QString& input) const override;
};
