<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>Finds every GigE Vision camera on this computer&apos;s networks, also those with a wrong address, shows what is the matter with each and gives it the right address.</source>
        <translation>Findet jede GigE-Vision-Kamera in den Netzwerken dieses Rechners, auch solche mit falscher Adresse, zeigt, was ihr fehlt, und gibt ihr die richtige Adresse.</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Copyright © %1 %2</source>
        <translation>Copyright © %1 %2</translation>
    </message>
</context>
<context>
    <name>Formatting</name>
    <message>
        <source>Static IP</source>
        <translation>Statische IP</translation>
    </message>
    <message>
        <source>DHCP</source>
        <translation>DHCP</translation>
    </message>
    <message>
        <source>Auto IP (LLA)</source>
        <translation>Auto-IP (LLA)</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>HelpAndSupport</name>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>down</source>
        <translation>abgeschaltet</translation>
    </message>
    <message>
        <source>up</source>
        <translation>aktiv</translation>
    </message>
    <message>
        <source>up, not connected</source>
        <translation>aktiv, nicht verbunden</translation>
    </message>
    <message>
        <source>Ethernet at %1 Mbit/s</source>
        <translation>Ethernet mit %1 Mbit/s</translation>
    </message>
    <message>
        <source>Ethernet</source>
        <translation>Ethernet</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>WLAN</translation>
    </message>
    <message>
        <source>loopback</source>
        <translation>Loopback</translation>
    </message>
    <message>
        <source>other kind</source>
        <translation>anderer Art</translation>
    </message>
    <message>
        <source>%1: %2, %3, MTU %4, rp_filter %5, %6</source>
        <translation>%1: %2, %3, MTU %4, rp_filter %5, %6</translation>
    </message>
    <message>
        <source>no IPv4 address</source>
        <translation>keine IPv4-Adresse</translation>
    </message>
    <message>
        <source>Default route: %1</source>
        <translation>Standardroute: %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Receive buffer: at most %1 bytes</source>
        <translation>Empfangspuffer: höchstens %1 Byte</translation>
    </message>
    <message>
        <source>Network adapters (rp_filter of all: %1):</source>
        <translation>Netzwerkadapter (rp_filter für alle: %1):</translation>
    </message>
    <message>
        <source>Submit Feedback</source>
        <translation>Feedback senden</translation>
    </message>
    <message>
        <source>No browser could be started.</source>
        <translation>Es konnte kein Browser gestartet werden.</translation>
    </message>
    <message>
        <source>Please open this address yourself:
%1</source>
        <translation>Bitte öffnen Sie diese Adresse selbst:
%1</translation>
    </message>
    <message>
        <source>%1: support request</source>
        <translation>%1: Supportanfrage</translation>
    </message>
    <message>
        <source>Please describe what happened:


%1</source>
        <translation>Bitte beschreiben Sie, was geschehen ist:


%1</translation>
    </message>
    <message>
        <source>E-mail: %1</source>
        <translation>E-Mail: %1</translation>
    </message>
    <message>
        <source>Program: %1 %2 (%3)</source>
        <translation>Programm: %1 %2 (%3)</translation>
    </message>
    <message>
        <source>Tessal camera SDK: %1, part of the program</source>
        <translation>Tessal-Kamera-SDK: %1, Teil des Programms</translation>
    </message>
    <message>
        <source>Qt: %1 on %2</source>
        <translation>Qt: %1 auf %2</translation>
    </message>
    <message>
        <source>System: %1</source>
        <translation>System: %1</translation>
    </message>
    <message>
        <source>Kernel: %1 %2</source>
        <translation>Kernel: %1 %2</translation>
    </message>
</context>
<context>
    <name>IpAddressWidget</name>
    <message>
        <source>M&amp;AC Address:</source>
        <translation>MA&amp;C-Adresse:</translation>
    </message>
    <message>
        <source>&amp;IP Address:</source>
        <translation>&amp;IP-Adresse:</translation>
    </message>
    <message>
        <source>Subnet &amp;Mask:</source>
        <translation>Subnetz&amp;maske:</translation>
    </message>
    <message>
        <source>Default &amp;Gateway:</source>
        <translation>Standard-&amp;Gateway:</translation>
    </message>
</context>
<context>
    <name>IpConfigurationWidget</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Device User ID</source>
        <translation>Benutzer-ID</translation>
    </message>
    <message>
        <source>Serial Number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>MAC Address</source>
        <translation>MAC-Adresse</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>IP Configuration</source>
        <translation>IP-Konfiguration</translation>
    </message>
    <message>
        <source>IP Address</source>
        <translation>IP-Adresse</translation>
    </message>
    <message>
        <source>Subnet Mask</source>
        <translation>Subnetzmaske</translation>
    </message>
    <message>
        <source>Alt+Shift+Ctrl+N</source>
        <translation>Alt+Shift+Ctrl+N</translation>
    </message>
    <message>
        <source>Alt+Shift+Ctrl+F</source>
        <translation>Alt+Shift+Ctrl+F</translation>
    </message>
    <message>
        <source>Valid addresses are:&lt;br&gt;</source>
        <translation>Gültige Adressen sind:&lt;br&gt;</translation>
    </message>
    <message>
        <source>Unknown exception occurred</source>
        <translation>Eine unbekannte Ausnahme ist aufgetreten</translation>
    </message>
    <message>
        <source>Trying to establish a connection to the device...</source>
        <translation>Es wird versucht, eine Verbindung zum Gerät herzustellen...</translation>
    </message>
    <message>
        <source>Connection failed</source>
        <translation>Verbindung fehlgeschlagen</translation>
    </message>
    <message>
        <source>Access denied
The device is controlled by another application.
Close the connection before changing the IP configuration.</source>
        <translation>Zugriff verweigert
Das Gerät wird von einer anderen Anwendung gesteuert.
Beenden Sie deren Verbindung, bevor Sie die IP-Konfiguration ändern.</translation>
    </message>
    <message>
        <source>A connection to the device must be established in order to change the configuration.&lt;br&gt;To do this, a temporary IP address needs to be assigned to the device.&lt;br&gt;This temporary address will only be used to update the configuration and will not be stored on the device.</source>
        <translation>Um die Konfiguration zu ändern, muss eine Verbindung zum Gerät hergestellt werden.&lt;br&gt;Dazu muss dem Gerät eine temporäre IP-Adresse zugewiesen werden.&lt;br&gt;Diese temporäre Adresse dient nur zum Ändern der Konfiguration und wird nicht im Gerät gespeichert.</translation>
    </message>
    <message>
        <source>Assign Temporary IP Address (Force IP)</source>
        <translation>Temporäre IP-Adresse zuweisen (Force IP)</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>IP Addresses 127.0.0.1 and 224.0.0.0 to 255.255.255.255 cannot be used.</source>
        <translation>Die IP-Adressen 127.0.0.1 und 224.0.0.0 bis 255.255.255.255 können nicht verwendet werden.</translation>
    </message>
    <message>
        <source>Please specify a temporary IP address.&lt;br&gt;This address will be valid until the device resets.</source>
        <translation>Bitte geben Sie eine temporäre IP-Adresse an.&lt;br&gt;Diese Adresse gilt, bis das Gerät neu startet.</translation>
    </message>
    <message>
        <source>Please specify the MAC address for the device to force the IP address.

There won&apos;t be any error message in case you specify the wrong MAC address.</source>
        <translation>Bitte geben Sie die MAC-Adresse des Geräts an, dem die IP-Adresse zugewiesen werden soll.

Eine falsche MAC-Adresse führt zu keiner Fehlermeldung.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;The device is currently in use by another application!&lt;/p&gt;&lt;p&gt;Please close any applications currently using the device and click &lt;b&gt;Refresh&lt;/b&gt; to check the status again.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Das Gerät wird gerade von einer anderen Anwendung benutzt!&lt;/p&gt;&lt;p&gt;Bitte schließen Sie alle Anwendungen, die das Gerät benutzen, und klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt;, um den Status erneut zu prüfen.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;There was an error while trying to determine the accessibility status of the device.&lt;/p&gt;Try refreshing the list by clicking &lt;b&gt;Refresh&lt;/b&gt;.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Der Zugriffsstatus des Geräts konnte nicht ermittelt werden.&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt;, um es mit der Liste erneut zu versuchen.</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;The device is unreachable!&lt;/p&gt;&lt;p&gt;Currently you will not be able to use the device.&lt;/p&gt;Please make sure the IP address is in the same subnet as the adapter the device is connected to.</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;Das Gerät ist nicht erreichbar!&lt;/p&gt;&lt;p&gt;Sie können es zurzeit nicht benutzen.&lt;/p&gt;Bitte sorgen Sie dafür, dass seine IP-Adresse im selben Subnetz liegt wie der Adapter, an den es angeschlossen ist.</translation>
    </message>
    <message>
        <source>&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Address:&lt;/td&gt;&lt;td width=&apos;100&apos; align=&apos;right&apos;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;&lt;/td&gt;&lt;td&gt;Subnet Mask:&lt;/td&gt;&lt;td align=&apos;right&apos;&gt;%2&lt;/td&gt;&lt;/tr&gt;</source>
        <translation>&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Adresse:&lt;/td&gt;&lt;td width=&apos;100&apos; align=&apos;right&apos;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td&gt;&lt;/td&gt;&lt;td&gt;Subnetzmaske:&lt;/td&gt;&lt;td align=&apos;right&apos;&gt;%2&lt;/td&gt;&lt;/tr&gt;</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;table align=&apos;left&apos; border=&apos;0&apos; cellpadding=&apos;1&apos; cellspacing=&apos;1&apos;&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Vendor:&lt;/td&gt;&lt;td&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Model Name:&lt;/td&gt;&lt;td&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Device User ID:&lt;/td&gt;&lt;td&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Serial Number:&lt;/td&gt;&lt;td&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;MAC Address:&lt;/td&gt;&lt;td&gt;%5&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Configuration:&lt;/td&gt;&lt;td&gt;%6&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP Address:&lt;/td&gt;&lt;td&gt;%7&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Subnet Mask:&lt;/td&gt;&lt;td&gt;%8&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Gateway:&lt;/td&gt;&lt;td&gt;%9&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;table align=&apos;left&apos; border=&apos;0&apos; cellpadding=&apos;1&apos; cellspacing=&apos;1&apos;&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Hersteller:&lt;/td&gt;&lt;td&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Modell:&lt;/td&gt;&lt;td&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Benutzer-ID:&lt;/td&gt;&lt;td&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Seriennummer:&lt;/td&gt;&lt;td&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;MAC-Adresse:&lt;/td&gt;&lt;td&gt;%5&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Konfiguration:&lt;/td&gt;&lt;td&gt;%6&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;IP-Adresse:&lt;/td&gt;&lt;td&gt;%7&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Subnetzmaske:&lt;/td&gt;&lt;td&gt;%8&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td width=&apos;8&apos;&gt;&lt;/td&gt;&lt;td&gt;Gateway:&lt;/td&gt;&lt;td&gt;%9&lt;/td&gt;&lt;/tr&gt;&lt;/table&gt;&lt;/p&gt;</translation>
    </message>
    <message>
        <source>The configuration could not be saved.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>&lt;p&gt;No devices found!&lt;/p&gt;Click &lt;b&gt;Refresh&lt;/b&gt; or press &lt;b&gt;F5&lt;/b&gt; to search for devices.</source>
        <translation>&lt;p&gt;Keine Geräte gefunden!&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt; oder drücken Sie &lt;b&gt;F5&lt;/b&gt;, um nach Geräten zu suchen.</translation>
    </message>
    <message>
        <source>Possible addresses are:&lt;br&gt;</source>
        <translation>Mögliche Adressen sind:&lt;br&gt;</translation>
    </message>
    <message>
        <source>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;&lt;p&gt;The network adapter and the device are currently not in the same subnet. Therefore, the device will currently not be visible to applications.&lt;/p&gt;&lt;p&gt;Make sure the device and the network adapter share the same network prefix and subnet mask.&lt;/p&gt;</source>
        <translation>&lt;p&gt;&lt;img src=&apos;:/Lanvic/Resources/error.png&apos;&gt;&lt;br&gt;&lt;p&gt;Netzwerkadapter und Gerät liegen zurzeit nicht im selben Subnetz. Deshalb ist das Gerät für Anwendungen nicht sichtbar.&lt;/p&gt;&lt;p&gt;Sorgen Sie dafür, dass Gerät und Netzwerkadapter dasselbe Netzwerkpräfix und dieselbe Subnetzmaske haben.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Assign Temporary IP Address...</source>
        <translation>&amp;Temporäre IP-Adresse zuweisen...</translation>
    </message>
    <message>
        <source>Do you want to save the changes to the configuration?</source>
        <translation>Möchten Sie die Änderungen an der Konfiguration speichern?</translation>
    </message>
    <message>
        <source>The configuration could not be saved.
Would you like to continue closing the application?

If you click &apos;Yes&apos;, your configuration will not be changed and the application will close.
If you click &apos;No&apos;, you will return to the application.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.
Möchten Sie die Anwendung trotzdem schließen?

Wenn Sie auf „Ja“ klicken, wird die Konfiguration nicht geändert und die Anwendung geschlossen.
Wenn Sie auf „Nein“ klicken, kehren Sie zur Anwendung zurück.</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Not Reachable</source>
        <translation>Unerreichbar</translation>
    </message>
    <message>
        <source>In use</source>
        <translation>Belegt</translation>
    </message>
    <message>
        <source>Failed to enumerate devices</source>
        <translation>Die Geräte konnten nicht aufgelistet werden</translation>
    </message>
    <message>
        <source>&lt;p&gt;No active network networkAdapter found!&lt;/p&gt;&lt;p&gt;Please make sure your network adapters are enabled and working correctly.&lt;/p&gt;Click &lt;b&gt;Refresh&lt;/b&gt; or press &lt;b&gt;F5&lt;/b&gt; to refresh the list of adapters.</source>
        <translation>&lt;p&gt;Kein aktiver Netzwerkadapter gefunden!&lt;/p&gt;&lt;p&gt;Bitte sorgen Sie dafür, dass Ihre Netzwerkadapter eingeschaltet sind und richtig arbeiten.&lt;/p&gt;Klicken Sie auf &lt;b&gt;Aktualisieren&lt;/b&gt; oder drücken Sie &lt;b&gt;F5&lt;/b&gt;, um die Liste der Adapter zu aktualisieren.</translation>
    </message>
    <message>
        <source>The configuration could not be saved.
The Refresh operation has been canceled.</source>
        <translation>Die Konfiguration konnte nicht gespeichert werden.
Das Aktualisieren wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Searching for devices...</source>
        <translation>Geräte werden gesucht...</translation>
    </message>
    <message>
        <source>Camera restarts its IP configuration cycle.
Waiting until the device has been discovered again...</source>
        <translation>Die Kamera beginnt ihre IP-Konfiguration von vorn.
Es wird gewartet, bis das Gerät wieder gefunden ist...</translation>
    </message>
    <message>
        <source>Could not update DeviceUserID.</source>
        <translation>Die Benutzer-ID (DeviceUserID) konnte nicht geändert werden.</translation>
    </message>
    <message>
        <source>The address %1 is that of another camera (MAC address %2). Refresh the list, or choose another temporary address.</source>
        <translation>Die Adresse %1 gehört einer anderen Kamera (MAC-Adresse %2). Aktualisieren Sie die Liste, oder wählen Sie eine andere temporäre Adresse.</translation>
    </message>
    <message>
        <source>Invalid IP address. IP addresses 224.0.0.0 to 255.255.255.255 and 127.0.0.1 are not allowed.</source>
        <translation>Ungültige IP-Adresse. Die IP-Adressen 224.0.0.0 bis 255.255.255.255 und 127.0.0.1 sind nicht erlaubt.</translation>
    </message>
    <message>
        <source>Failed to discover reconfigured device</source>
        <translation>Das neu konfigurierte Gerät wurde nicht wiedergefunden</translation>
    </message>
</context>
<context>
    <name>IpConfigurationWidgetClass</name>
    <message>
        <source>Network adapters and cameras</source>
        <translation>Netzwerkadapter und Kameras</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
    <message>
        <source>2</source>
        <translation>2</translation>
    </message>
    <message>
        <source>3</source>
        <translation>3</translation>
    </message>
    <message>
        <source>4</source>
        <translation>4</translation>
    </message>
    <message>
        <source>5</source>
        <translation>5</translation>
    </message>
    <message>
        <source>Configuration of the selected camera</source>
        <translation>Konfiguration der ausgewählten Kamera</translation>
    </message>
    <message>
        <source>S&amp;tatic IP</source>
        <translation>S&amp;tatische IP</translation>
    </message>
    <message>
        <source>&amp;Gateway:</source>
        <translation>&amp;Gateway:</translation>
    </message>
    <message>
        <source>Subnet &amp;Mask:</source>
        <translation>Subnetz&amp;maske:</translation>
    </message>
    <message>
        <source>&amp;IP Address:</source>
        <translation>&amp;IP-Adresse:</translation>
    </message>
    <message>
        <source>&amp;DHCP</source>
        <translation>D&amp;HCP</translation>
    </message>
    <message>
        <source>&amp;Auto IP (LLA)</source>
        <translation>A&amp;uto-IP (LLA)</translation>
    </message>
    <message>
        <source>Device &amp;User ID:</source>
        <translation>&amp;Benutzer-ID:</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Ctrl+S</translation>
    </message>
    <message>
        <source>What the selected row stands for</source>
        <translation>Wofür die ausgewählte Zeile steht</translation>
    </message>
    <message>
        <source>Selection Info</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>What is the matter and what to do about it</source>
        <translation>Was nicht stimmt und was dagegen zu tun ist</translation>
    </message>
    <message>
        <source>Hint</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
</context>
<context>
    <name>MainWnd</name>
    <message>
        <source>Tessal Lanvic</source>
        <translation>Tessal Lanvic</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>&amp;?</source>
        <translation>&amp;?</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>View &amp;Help</source>
        <translation>&amp;Hilfe anzeigen</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>&amp;About Tessal Lanvic</source>
        <translation>Ü&amp;ber Tessal Lanvic</translation>
    </message>
    <message>
        <source>Submit &amp;Feedback...</source>
        <translation>&amp;Feedback senden...</translation>
    </message>
    <message>
        <source>&amp;Contact Orvik Support...</source>
        <translation>Orvik-Support &amp;kontaktieren...</translation>
    </message>
    <message>
        <source>Contact Orvik Support</source>
        <translation>Orvik-Support kontaktieren</translation>
    </message>
    <message>
        <source>In order to contact Orvik support, you can copy the information (e-mail address and Tessal information) to your clipboard.

The copied information is visible via “Show Details”.

Afterwards you can send this information to the indicated address (visible via “Show Details”).</source>
        <translation>Um den Orvik-Support zu kontaktieren, können Sie die Angaben (E-Mail-Adresse und Tessal-Angaben) in die Zwischenablage kopieren.

Die kopierten Angaben sehen Sie über „Details einblenden“.

Danach können Sie sie an die angegebene Adresse senden (zu sehen über „Details einblenden“).</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>E-Mail information copied to clipboard successfully.</source>
        <translation>Die E-Mail-Angaben wurden in die Zwischenablage kopiert.</translation>
    </message>
</context>
<context>
    <name>Messages</name>
    <message>
        <source>The operation failed without saying why.</source>
        <translation>Der Vorgang ist ohne Angabe eines Grundes fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Operation: %1</source>
        <translation>Vorgang: %1</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Failed to create transport layer object</source>
        <translation>Die Transportschicht konnte nicht erzeugt werden</translation>
    </message>
</context>
</TS>
