<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Dialog</name>
    <message>
        <source>Picture of a download</source>
        <translation>Bild eines Downloads</translation>
    </message>
</context>
<context>
    <name>HistoryFile</name>
    <message>
        <source>The file belongs to another user.</source>
        <translation>Die Datei gehört einem anderen Benutzer.</translation>
    </message>
    <message>
        <source>Another program is using the file.</source>
        <translation>Ein anderes Programm verwendet die Datei.</translation>
    </message>
    <message>
        <source>The file cannot be read.</source>
        <translation>Die Datei kann nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>ListMenu</name>
    <message>
        <source>Order of the &amp;page</source>
        <translation>Reihenfolge der &amp;Seite</translation>
    </message>
    <message>
        <source>%1, ascending</source>
        <translation>%1, aufsteigend</translation>
    </message>
    <message>
        <source>%1, descending</source>
        <translation>%1, absteigend</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Copy &amp;address</source>
        <translation>&amp;Adresse kopieren</translation>
    </message>
    <message>
        <source>&amp;Copy rows</source>
        <translation>&amp;Zeilen kopieren</translation>
    </message>
    <message>
        <source>Select a&amp;ll</source>
        <translation>A&amp;lles auswählen</translation>
    </message>
    <message>
        <source>&amp;Filter...</source>
        <translation>F&amp;iltern...</translation>
    </message>
    <message>
        <source>So&amp;rt by</source>
        <translation>So&amp;rtieren nach</translation>
    </message>
    <message>
        <source>&amp;Save list...</source>
        <translation>Liste &amp;speichern...</translation>
    </message>
</context>
<context>
    <name>Proxy</name>
    <message>
        <source>Proxy options</source>
        <translation>Proxy-Einstellungen</translation>
    </message>
    <message>
        <source>Proxy host</source>
        <translation>Proxy-Rechner</translation>
    </message>
    <message>
        <source>Proxy port</source>
        <translation>Proxy-Port</translation>
    </message>
</context>
<context>
    <name>TlsFaults</name>
    <message>
        <source>the certificate expired on %1</source>
        <translation>das Zertifikat ist am %1 abgelaufen</translation>
    </message>
    <message>
        <source>the certificate is not valid before %1</source>
        <translation>das Zertifikat ist erst ab dem %1 gültig</translation>
    </message>
    <message>
        <source>the certificate is self-signed</source>
        <translation>das Zertifikat ist selbst signiert</translation>
    </message>
    <message>
        <source>the certificate&apos;s issuer is unknown to this system</source>
        <translation>dieses System kennt den Aussteller des Zertifikats nicht</translation>
    </message>
    <message>
        <source>the certificate is revoked</source>
        <translation>das Zertifikat ist widerrufen</translation>
    </message>
    <message>
        <source>the certificate is not for %1</source>
        <translation>das Zertifikat gilt nicht für %1</translation>
    </message>
    <message>
        <source>The server cannot be trusted: %1</source>
        <translation>Dem Server ist nicht zu trauen: %1</translation>
    </message>
    <message>
        <source>The server demands a certificate of its clients</source>
        <translation>Der Server verlangt ein Zertifikat von seinen Clients</translation>
    </message>
    <message>
        <source>The server does not support TLS 1.2 or later</source>
        <translation>Der Server unterstützt TLS 1.2 und neuere Versionen nicht</translation>
    </message>
    <message>
        <source>The server does not know the host name</source>
        <translation>Der Server kennt den Rechnernamen nicht</translation>
    </message>
    <message>
        <source>The server refused the secure connection (TLS alert %1)</source>
        <translation>Der Server hat die sichere Verbindung abgelehnt (TLS-Meldung %1)</translation>
    </message>
    <message>
        <source>The server does not speak TLS as it should: %1</source>
        <translation>Der Server hält sich nicht an TLS: %1</translation>
    </message>
    <message>
        <source>The server closed the connection during the TLS handshake</source>
        <translation>Der Server hat die Verbindung während des TLS-Aufbaus geschlossen</translation>
    </message>
    <message>
        <source>The attempt to connect timed out: the server does not answer over TLS</source>
        <translation>Zeitüberschreitung beim Verbinden: Der Server antwortet nicht über TLS</translation>
    </message>
    <message>
        <source>The secure connection failed: %1</source>
        <translation>Die sichere Verbindung ist fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>No TLS library is installed, so addresses with https:// cannot be fetched</source>
        <translation>Es ist keine TLS-Bibliothek installiert, daher lassen sich Adressen mit https:// nicht abrufen</translation>
    </message>
</context>
<context>
    <name>frmAbout</name>
    <message>
        <source>Picture of a quarry under a net</source>
        <translation>Bild eines Steinbruchs unter einem Netz</translation>
    </message>
    <message>
        <source>Quarrynet&apos;s emblem</source>
        <translation>Emblem von Quarrynet</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>local_files</name>
    <message>
        <source>There is something of this name that is not a file.</source>
        <translation>Unter diesem Namen gibt es etwas, das keine Datei ist.</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>The folder cannot be written.</source>
        <translation>In den Ordner kann nicht geschrieben werden.</translation>
    </message>
</context>
<context>
    <name>quarrynet::AddressDrop</name>
    <message>
        <source>There is no web address in this file:
%1</source>
        <translation>In dieser Datei steht keine Webadresse:
%1</translation>
    </message>
</context>
<context>
    <name>quarrynet::BrowserEngine</name>
    <message>
        <source>its rendering process is not installed.</source>
        <translation>Ihr Darstellungsprozess ist nicht installiert.</translation>
    </message>
    <message>
        <source>it cannot use a sandbox when root starts it.</source>
        <translation>Unter root ist keine Sandbox möglich.</translation>
    </message>
    <message>
        <source>this system does not allow it a sandbox.</source>
        <translation>Dieses System erlaubt ihr keine Sandbox.</translation>
    </message>
</context>
<context>
    <name>quarrynet::BrowserView</name>
    <message>
        <source>The browser view has ended unexpectedly.</source>
        <translation>Die Browseransicht wurde unerwartet beendet.</translation>
    </message>
    <message>
        <source>The browser view stopped responding.</source>
        <translation>Die Browseransicht reagiert nicht mehr.</translation>
    </message>
    <message>
        <source>The browser view used too much memory.</source>
        <translation>Die Browseransicht hat zu viel Speicher belegt.</translation>
    </message>
    <message>
        <source>The page sent too many requests.</source>
        <translation>Die Seite hat zu viele Anfragen gestellt.</translation>
    </message>
</context>
<context>
    <name>quarrynet::BusySign</name>
    <message>
        <source>A search is running</source>
        <translation>Eine Suche läuft</translation>
    </message>
</context>
<context>
    <name>quarrynet::DownloadSearch</name>
    <message>
        <source>Keywords of the download search</source>
        <translation>Suchbegriffe der Download-Suche</translation>
    </message>
    <message>
        <source>Start the search</source>
        <translation>Suche starten</translation>
    </message>
    <message>
        <source>Programs found</source>
        <translation>Gefundene Programme</translation>
    </message>
    <message>
        <source>Result page</source>
        <translation>Ergebnisseite</translation>
    </message>
</context>
<context>
    <name>quarrynet::EntryPopup</name>
    <message>
        <source>Earlier entries</source>
        <translation>Frühere Einträge</translation>
    </message>
    <message>
        <source>&amp;Remove from History</source>
        <translation>Aus dem Verlauf &amp;löschen</translation>
    </message>
</context>
<context>
    <name>quarrynet::FieldHistory</name>
    <message>
        <source>&amp;Keep History</source>
        <translation>Verlauf &amp;aufzeichnen</translation>
    </message>
    <message>
        <source>&amp;Clear History</source>
        <translation>Verlauf &amp;löschen</translation>
    </message>
</context>
<context>
    <name>quarrynet::FileSearch</name>
    <message>
        <source>File name to search for</source>
        <translation>Gesuchter Dateiname</translation>
    </message>
    <message>
        <source>Start the search</source>
        <translation>Suche starten</translation>
    </message>
    <message>
        <source>Files found</source>
        <translation>Gefundene Dateien</translation>
    </message>
    <message>
        <source>Result page</source>
        <translation>Ergebnisseite</translation>
    </message>
</context>
<context>
    <name>quarrynet::FilterLine</name>
    <message>
        <source>Show only rows with these words</source>
        <translation>Nur Zeilen mit diesen Wörtern zeigen</translation>
    </message>
    <message>
        <source>Show all rows</source>
        <translation>Alle Zeilen zeigen</translation>
    </message>
    <message>
        <source>Rows: %1 of %2</source>
        <translation>Zeilen: %1 von %2</translation>
    </message>
</context>
<context>
    <name>quarrynet::HtmlView</name>
    <message>
        <source>Pictures and links are shown without the browser view.</source>
        <translation>Bilder und Verweise werden ohne die Browseransicht angezeigt.</translation>
    </message>
    <message>
        <source>The browser view cannot start: %1</source>
        <translation>Keine Browseransicht: %1</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Kein Bild</translation>
    </message>
</context>
<context>
    <name>quarrynet::ImageSearch</name>
    <message>
        <source>Keywords of the image search</source>
        <translation>Suchbegriffe der Bildersuche</translation>
    </message>
    <message>
        <source>Start the search</source>
        <translation>Suche starten</translation>
    </message>
    <message>
        <source>Images found</source>
        <translation>Gefundene Bilder</translation>
    </message>
    <message>
        <source>Result page</source>
        <translation>Ergebnisseite</translation>
    </message>
    <message>
        <source>%1 pixels</source>
        <translation>%1 Pixel</translation>
    </message>
</context>
<context>
    <name>quarrynet::ListCommands</name>
    <message>
        <source>Table for spreadsheets (*.csv)</source>
        <translation>Tabelle für Tabellenkalkulationen (*.csv)</translation>
    </message>
    <message>
        <source>Data for programs (*.json)</source>
        <translation>Daten für Programme (*.json)</translation>
    </message>
    <message>
        <source>Web page (*.html)</source>
        <translation>Webseite (*.html)</translation>
    </message>
    <message>
        <source>&amp;Save List...</source>
        <translation>Liste &amp;speichern...</translation>
    </message>
    <message>
        <source>Save List</source>
        <translation>Liste speichern</translation>
    </message>
    <message>
        <source>Save the Rows of the Previous Results</source>
        <translation>Zeilen der vorigen Ergebnisse speichern</translation>
    </message>
</context>
<context>
    <name>quarrynet::ListView</name>
    <message>
        <source>Sorted by %1, ascending</source>
        <translation>Sortiert nach %1, aufsteigend</translation>
    </message>
    <message>
        <source>Sorted by %1, descending</source>
        <translation>Sortiert nach %1, absteigend</translation>
    </message>
</context>
<context>
    <name>quarrynet::Main</name>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>Searches</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>State of the connection</source>
        <translation>Zustand der Verbindung</translation>
    </message>
    <message>
        <source>Step of the search</source>
        <translation>Schritt der Suche</translation>
    </message>
    <message>
        <source>Section [%1]: the port must not be greater than %2.</source>
        <translation>Abschnitt [%1]: Der Port darf nicht größer als %2 sein.</translation>
    </message>
</context>
<context>
    <name>quarrynet::PageCheck</name>
    <message>
        <source>Address of the page to check</source>
        <translation>Adresse der zu prüfenden Seite</translation>
    </message>
    <message>
        <source>Start the search</source>
        <translation>Suche starten</translation>
    </message>
    <message>
        <source>Keywords to look for on the page</source>
        <translation>Auf der Seite gesuchte Begriffe</translation>
    </message>
    <message>
        <source>Match mode</source>
        <translation>Art der Übereinstimmung</translation>
    </message>
    <message>
        <source>Keywords found or not found</source>
        <translation>Gefundene und nicht gefundene Begriffe</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>Keine Ergebnisse</translation>
    </message>
</context>
<context>
    <name>quarrynet::PagingSlider</name>
    <message>
        <source>page %1 of %2</source>
        <translation>Seite %1 von %2</translation>
    </message>
    <message>
        <source>page %1</source>
        <translation>Seite %1</translation>
    </message>
</context>
<context>
    <name>quarrynet::RememberedPlaces</name>
    <message>
        <source>&amp;Forget Place and Columns</source>
        <translation>Platz und Spalten &amp;vergessen</translation>
    </message>
</context>
<context>
    <name>quarrynet::SearchReports</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>quarrynet::SearchTab</name>
    <message>
        <source>No results</source>
        <translation>Keine Ergebnisse</translation>
    </message>
    <message>
        <source>%1 results</source>
        <translation>%1 Ergebnisse</translation>
    </message>
    <message>
        <source>%1 of %2 results</source>
        <translation>%1 von %2 Ergebnissen</translation>
    </message>
    <message>
        <source>1 result</source>
        <translation>1 Ergebnis</translation>
    </message>
</context>
<context>
    <name>quarrynet::WebSearch</name>
    <message>
        <source>Keywords of the web search</source>
        <translation>Suchbegriffe der Websuche</translation>
    </message>
    <message>
        <source>Start the search</source>
        <translation>Suche starten</translation>
    </message>
    <message>
        <source>Web pages found</source>
        <translation>Gefundene Webseiten</translation>
    </message>
    <message>
        <source>Result page</source>
        <translation>Ergebnisseite</translation>
    </message>
</context>
<context>
    <name>winsock_errors</name>
    <message>
        <source>Permission to use the network was denied</source>
        <translation>Die Berechtigung zur Nutzung des Netzwerks wurde verweigert</translation>
    </message>
    <message>
        <source>The remote address is not valid</source>
        <translation>Die Zieladresse ist ungültig</translation>
    </message>
    <message>
        <source>The network cannot be reached from this host at this time</source>
        <translation>Das Netzwerk ist von diesem Rechner aus zurzeit nicht erreichbar</translation>
    </message>
    <message>
        <source>The connection has timed out when SO_KEEPALIVE is set</source>
        <translation>Zeitüberschreitung der Verbindung bei gesetztem SO_KEEPALIVE</translation>
    </message>
    <message>
        <source>No buffer space is available</source>
        <translation>Es ist kein Pufferspeicher verfügbar</translation>
    </message>
    <message>
        <source>The attempt to connect timed out</source>
        <translation>Zeitüberschreitung beim Verbinden</translation>
    </message>
    <message>
        <source>Connection is forcefully rejected</source>
        <translation>Die Verbindung wurde abgelehnt</translation>
    </message>
    <message>
        <source>The host cannot be reached from this host at this time</source>
        <translation>Der Zielrechner ist von diesem Rechner aus zurzeit nicht erreichbar</translation>
    </message>
    <message>
        <source>The remote address is not valid: a port is a number from 1 to 65535</source>
        <translation>Die Zieladresse ist ungültig: Ein Port ist eine Zahl von 1 bis 65535</translation>
    </message>
    <message>
        <source>Connection is aborted due to timeout or other failure</source>
        <translation>Die Verbindung wurde wegen Zeitüberschreitung oder eines anderen Fehlers abgebrochen</translation>
    </message>
    <message>
        <source>The connection is reset by remote side</source>
        <translation>Die Gegenseite hat die Verbindung zurückgesetzt</translation>
    </message>
    <message>
        <source>Host not found</source>
        <translation>Rechner nicht gefunden</translation>
    </message>
</context>
</TS>
