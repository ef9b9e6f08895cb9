#pragma once

#include "advice/advice.h"

#include <QDialog>
#include <QHostAddress>

#include <map>
#include <memory>

class AdviceSign;
class QLineEdit;
class Ui_IpAddressWidget;

/// Dialog that asks for an address, a mask, a gateway and, if wanted, a MAC address. It names the camera and
/// warns of what cannot work. OK is disabled until everything is complete; nothing else is rejected here, so
/// that the caller may have to show the dialog again with what was typed. Each time it is shown, the first
/// field has the focus, with the cursor at its end.
///
/// While the user types an address, the mask follows it (subnetFromAddress), until the user types a mask;
/// emptying the mask field lets it follow again.
class IpAddressWidget : public QDialog
{
    Q_OBJECT

public:
    explicit IpAddressWidget(QWidget* parent = nullptr);
    Q_DISABLE_COPY_MOVE(IpAddressWidget)
    ~IpAddressWidget() override;

    /// Rich text, or plain text with line breaks, at the top of the dialog.
    void setHeaderText(const QString& text);
    /// What made the dialog necessary, in a line of its own below the header, with technical details as its
    /// tool tip; both are plain text. An empty sentence hides the line.
    void setReason(const QString& sentence, const QString& technicalText);
    /// What the camera's name and the advice are derived from; empty at first.
    void setSurroundings(advice::Surroundings surroundings);
    /// Off at first.
    void setShowMacAddress(bool show);
    void setIpAddress(const QString& text);
    void setSubnetMask(const QString& text);
    void setDefaultGateway(const QString& text);
    /// A MAC address is shown as pairs of digits; for any other text, the maker's prefix is shown.
    void setMacAddress(const QString& text);

    [[nodiscard]] QString ipAddress() const;
    [[nodiscard]] QString subnetMask() const;
    [[nodiscard]] QString defaultGateway() const;
    [[nodiscard]] QString macAddress() const;

    /// All fields at once, as they are.
    [[nodiscard]] advice::Entry entry() const;
    void setEntry(const advice::Entry& entry);

    /// The mask of the host subnet that contains the address, or else the classful one (169.254 is /16); null
    /// if it is not a unicast address.
    [[nodiscard]] static QHostAddress subnetFromAddress(const QHostAddress& address);

    void setVisible(bool visible) override;

protected:
    /// An Enter key that is held down accepts nothing: it may have been pressed before the dialog was shown.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void createAdviceSigns();
    void takeMaskLength(QLineEdit* edit);
    void followAddress(const QString& text);
    void showCamera();
    void showAdvice();

    std::unique_ptr<Ui_IpAddressWidget> ui;
    std::map<advice::Field, AdviceSign*> m_signs;
    advice::Surroundings m_surroundings;
    bool m_maskTyped = false;
};
