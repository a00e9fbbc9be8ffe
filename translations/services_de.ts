<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>serve_command</name>
    <message>
        <source>The search cannot answer, because its configuration is wrong: %1. Correct the file and restart the services.</source>
        <translation>Die Suche kann nicht antworten, weil ihre Konfiguration fehlerhaft ist: %1. Berichtigen Sie die Datei und starten Sie die Dienste neu.</translation>
    </message>
</context>
<context>
    <name>HttpServer</name>
    <message>
        <source>Too many requests are waiting.</source>
        <translation>Es warten zu viele Anfragen.</translation>
    </message>
</context>
<context>
    <name>HttpSession</name>
    <message>
        <source>This server answers only GET and HEAD.</source>
        <translation>Dieser Server beantwortet nur GET und HEAD.</translation>
    </message>
    <message>
        <source>The response could not be made.</source>
        <translation>Die Antwort konnte nicht erstellt werden.</translation>
    </message>
    <message>
        <source>The request took too long to arrive.</source>
        <translation>Die Anfrage kam nicht rechtzeitig an.</translation>
    </message>
    <message>
        <source>The request is incomplete.</source>
        <translation>Die Anfrage ist unvollständig.</translation>
    </message>
</context>
<context>
    <name>Router</name>
    <message>
        <source>This is quarrynet-services itself, which cannot be a source of its own.</source>
        <translation>Dies ist quarrynet-services selbst, das nicht seine eigene Quelle sein kann.</translation>
    </message>
    <message>
        <source>The local search services do not serve %1.</source>
        <translation>Die lokalen Suchdienste sind nicht für %1 zuständig.</translation>
    </message>
    <message>
        <source>This is the proxy port of the local search services. Use it as an HTTP proxy.</source>
        <translation>Dies ist der Proxy-Port der lokalen Suchdienste. Benutzen Sie ihn als HTTP-Proxy.</translation>
    </message>
    <message>
        <source>This proxy serves the local search services only, not %1.</source>
        <translation>Dieser Proxy führt nur zu den lokalen Suchdiensten, nicht zu %1.</translation>
    </message>
</context>
<context>
    <name>message</name>
    <message>
        <source>The address in the request line has no host.</source>
        <translation>Die Adresse in der Anfragezeile nennt keinen Rechner.</translation>
    </message>
    <message>
        <source>This server opens no tunnels.</source>
        <translation>Dieser Server öffnet keine Tunnel.</translation>
    </message>
    <message>
        <source>The request target is neither a path nor an http address.</source>
        <translation>Das Ziel der Anfrage ist weder ein Pfad noch eine http-Adresse.</translation>
    </message>
    <message>
        <source>The request line is too long.</source>
        <translation>Die Anfragezeile ist zu lang.</translation>
    </message>
    <message>
        <source>The request's header is too large.</source>
        <translation>Der Kopf der Anfrage ist zu groß.</translation>
    </message>
    <message>
        <source>This server supports HTTP/1.0 and HTTP/1.1 only.</source>
        <translation>Dieser Server unterstützt nur HTTP/1.0 und HTTP/1.1.</translation>
    </message>
    <message>
        <source>The request is malformed: %1.</source>
        <translation>Die Anfrage ist fehlerhaft: %1.</translation>
    </message>
    <message>
        <source>The request needs exactly one Host field.</source>
        <translation>Die Anfrage braucht genau ein Host-Feld.</translation>
    </message>
</context>
<context>
    <name>source_fault</name>
    <message>
        <source>JSON is not enabled (403)</source>
        <translation>JSON ist nicht freigegeben (403)</translation>
    </message>
    <message>
        <source>SearXNG answers programs only if its owner has enabled JSON. If the instance is yours, add json to the list search.formats in its settings.yml and restart it. Otherwise choose another instance in services.toml.</source>
        <translation>SearXNG antwortet Programmen nur, wenn der Betreiber JSON freigegeben hat. Wenn es Ihre eigene Instanz ist, fügen Sie json in ihrer settings.yml zur Liste search.formats hinzu und starten sie neu. Andernfalls wählen Sie in services.toml eine andere Instanz.</translation>
    </message>
    <message>
        <source>too many searches</source>
        <translation>zu viele Suchen</translation>
    </message>
    <message>
        <source>The instance limits how often it answers. It is not asked again before the wait is over. Add further instances in services.toml, or run one of your own.</source>
        <translation>Die Instanz begrenzt, wie oft sie antwortet. Sie wird erst nach Ablauf der Wartezeit wieder gefragt. Tragen Sie in services.toml weitere Instanzen ein, oder betreiben Sie eine eigene.</translation>
    </message>
    <message>
        <source>no answer in time</source>
        <translation>keine rechtzeitige Antwort</translation>
    </message>
    <message>
        <source>Search again in a moment. If the source is always slow, raise wait-seconds in services.toml, or choose another instance.</source>
        <translation>Suchen Sie in Kürze noch einmal. Wenn die Quelle immer langsam ist, erhöhen Sie wait-seconds in services.toml, oder wählen Sie eine andere Instanz.</translation>
    </message>
    <message>
        <source>faulty certificate or TLS</source>
        <translation>fehlerhaftes Zertifikat oder TLS</translation>
    </message>
    <message>
        <source>Nothing was sent to it. Check the address in services.toml and this machine's date. If the instance is yours and has a certificate of your own authority, name its file as ca-file in services.toml.</source>
        <translation>Es wurde nichts an sie gesendet. Prüfen Sie die Adresse in services.toml und das Datum dieses Rechners. Wenn es Ihre eigene Instanz ist und sie ein Zertifikat Ihrer eigenen Zertifizierungsstelle hat, geben Sie deren Datei in services.toml als ca-file an.</translation>
    </message>
    <message>
        <source>no such host</source>
        <translation>Rechner nicht gefunden</translation>
    </message>
    <message>
        <source>Check the address in services.toml, and whether this machine is connected to the internet.</source>
        <translation>Prüfen Sie die Adresse in services.toml und ob dieser Rechner mit dem Internet verbunden ist.</translation>
    </message>
    <message>
        <source>no connection</source>
        <translation>keine Verbindung</translation>
    </message>
    <message>
        <source>Check the address and the port in services.toml, whether the instance is running, and whether this machine is connected.</source>
        <translation>Prüfen Sie Adresse und Port in services.toml, ob die Instanz läuft und ob dieser Rechner verbunden ist.</translation>
    </message>
    <message>
        <source>no answer to a search</source>
        <translation>keine Antwort auf eine Suche</translation>
    </message>
    <message>
        <source>Check that the address in services.toml is that of a SearXNG or searx instance.</source>
        <translation>Prüfen Sie, ob die Adresse in services.toml die einer SearXNG- oder searx-Instanz ist.</translation>
    </message>
    <message>
        <source>moved to another address</source>
        <translation>an eine andere Adresse umgezogen</translation>
    </message>
    <message>
        <source>What you type is not sent on to addresses that you did not name. If you trust the new one, write it into services.toml.</source>
        <translation>Ihre Eingaben werden nicht an Adressen weitergegeben, die Sie nicht genannt haben. Wenn Sie der neuen vertrauen, tragen Sie sie in services.toml ein.</translation>
    </message>
    <message>
        <source>this is quarrynet-services itself</source>
        <translation>das ist quarrynet-services selbst</translation>
    </message>
    <message>
        <source>Name the address of a SearXNG or searx instance in services.toml, not one of quarrynet-services.</source>
        <translation>Geben Sie in services.toml die Adresse einer SearXNG- oder searx-Instanz an, keine von quarrynet-services.</translation>
    </message>
    <message>
        <source>error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>The instance has a fault of its own. Search again later, or choose another instance in services.toml.</source>
        <translation>Die Instanz selbst hat einen Fehler. Suchen Sie später noch einmal, oder wählen Sie in services.toml eine andere Instanz.</translation>
    </message>
    <message>
        <source>its engines did not answer</source>
        <translation>ihre Suchmaschinen haben nicht geantwortet</translation>
    </message>
    <message>
        <source>The instance asks engines in turn, and these refused or were too slow. Search again later, or choose another instance in services.toml.</source>
        <translation>Die Instanz fragt ihrerseits Suchmaschinen, und diese haben abgelehnt oder waren zu langsam. Suchen Sie später noch einmal, oder wählen Sie in services.toml eine andere Instanz.</translation>
    </message>
    <message>
        <source>cannot answer</source>
        <translation>kann nicht antworten</translation>
    </message>
    <message>
        <source>The message says what to do. If it does not, search again in a moment.</source>
        <translation>Die Meldung sagt, was zu tun ist. Sagt sie es nicht, suchen Sie in Kürze noch einmal.</translation>
    </message>
    <message>
        <source>The index</source>
        <translation>Der Index</translation>
    </message>
    <message>
        <source>The source</source>
        <translation>Die Quelle</translation>
    </message>
    <message>
        <source>There is no such help page.</source>
        <translation>Diese Hilfeseite gibt es nicht.</translation>
    </message>
    <message>
        <source>A source did not answer</source>
        <translation>Eine Quelle hat nicht geantwortet</translation>
    </message>
    <message>
        <source>What to do</source>
        <translation>Abhilfe</translation>
    </message>
    <message>
        <source>The configuration file is &lt;code&gt;services.toml&lt;/code&gt; in the folder &lt;code&gt;quarrynet&lt;/code&gt; of your configuration folder (&lt;code&gt;~/.config&lt;/code&gt;). &lt;code&gt;quarrynet-services check&lt;/code&gt; asks each source one search and says what answers.</source>
        <translation>Die Konfigurationsdatei ist &lt;code&gt;services.toml&lt;/code&gt; im Ordner &lt;code&gt;quarrynet&lt;/code&gt; Ihres Konfigurationsordners (&lt;code&gt;~/.config&lt;/code&gt;). &lt;code&gt;quarrynet-services check&lt;/code&gt; stellt jeder Quelle eine Suchanfrage und meldet, was antwortet.</translation>
    </message>
</context>
<context>
    <name>DownloadService</name>
    <message>
        <source>Download search</source>
        <translation>Download-Suche</translation>
    </message>
    <message>
        <source>Download now</source>
        <translation>Jetzt herunterladen</translation>
    </message>
    <message>
        <source>No program has these words.</source>
        <translation>Kein Programm enthält diese Wörter.</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Herunterladen</translation>
    </message>
    <message>
        <source>Local download search</source>
        <translation>Lokale Download-Suche</translation>
    </message>
    <message>
        <source>Searches the programs in this machine's package lists.</source>
        <translation>Durchsucht die Programme in den Paketlisten dieses Rechners.</translation>
    </message>
    <message>
        <source>There is no such page on the download search.</source>
        <translation>Diese Seite gibt es bei der Download-Suche nicht.</translation>
    </message>
    <message>
        <source>The search cannot answer: %1.</source>
        <translation>Die Suche kann nicht antworten: %1.</translation>
    </message>
    <message>
        <source>The download cannot be found: %1.</source>
        <translation>Der Download ist nicht auffindbar: %1.</translation>
    </message>
    <message>
        <source>There is no such download.</source>
        <translation>Diesen Download gibt es nicht.</translation>
    </message>
</context>
<context>
    <name>FileService</name>
    <message>
        <source>File search</source>
        <translation>Dateisuche</translation>
    </message>
    <message>
        <source>no file or directory has this in its name.</source>
        <translation>keine Datei und kein Ordner hat dies im Namen.</translation>
    </message>
    <message>
        <source>Searches the names of files on the mirrors of this machine's packages, in the packages, and on servers that were crawled.</source>
        <translation>Durchsucht die Namen der Dateien auf den Spiegelservern der Pakete dieses Rechners, in den Paketen und auf eingelesenen Servern.</translation>
    </message>
    <message>
        <source>There is no such page on the file search.</source>
        <translation>Diese Seite gibt es bei der Dateisuche nicht.</translation>
    </message>
</context>
<context>
    <name>ImageService</name>
    <message>
        <source>Image search</source>
        <translation>Bildersuche</translation>
    </message>
    <message>
        <source>There is no such picture.</source>
        <translation>Dieses Bild gibt es nicht.</translation>
    </message>
    <message>
        <source>No picture was found for these words.</source>
        <translation>Zu diesen Wörtern wurde kein Bild gefunden.</translation>
    </message>
    <message>
        <source>Local image search</source>
        <translation>Lokale Bildersuche</translation>
    </message>
    <message>
        <source>Searches the pictures in this machine's folders of icons, backgrounds and documentation, or in the folders that it was given.</source>
        <translation>Durchsucht die Bilder in den Ordnern dieses Rechners mit Symbolen, Hintergründen und Dokumentation oder in den angegebenen Ordnern.</translation>
    </message>
    <message>
        <source>There is no such page on the image search.</source>
        <translation>Diese Seite gibt es bei der Bildersuche nicht.</translation>
    </message>
    <message>
        <source>This picture was listed too long ago. Search again.</source>
        <translation>Dieses Bild wurde vor zu langer Zeit aufgeführt. Suchen Sie noch einmal.</translation>
    </message>
    <message>
        <source>The picture is at %1.</source>
        <translation>Das Bild ist unter %1.</translation>
    </message>
    <message>
        <source>The thumbnail cannot be served: %1.</source>
        <translation>Das Vorschaubild ist nicht abrufbar: %1.</translation>
    </message>
    <message>
        <source>The picture cannot be served: %1.</source>
        <translation>Das Bild ist nicht abrufbar: %1.</translation>
    </message>
</context>
<context>
    <name>WebService</name>
    <message>
        <source>Web search</source>
        <translation>Websuche</translation>
    </message>
    <message>
        <source>Local web search</source>
        <translation>Lokale Websuche</translation>
    </message>
    <message>
        <source>Searches the home pages of the programs in this machine's package lists, and the documentation installed on it.</source>
        <translation>Durchsucht die Webseiten der Programme in den Paketlisten dieses Rechners und die darauf installierte Dokumentation.</translation>
    </message>
    <message>
        <source>No page was found for these words.</source>
        <translation>Zu diesen Wörtern wurde keine Seite gefunden.</translation>
    </message>
    <message>
        <source>There is no such page on the web search.</source>
        <translation>Diese Seite gibt es bei der Websuche nicht.</translation>
    </message>
    <message>
        <source>There is no such document.</source>
        <translation>Dieses Dokument gibt es nicht.</translation>
    </message>
    <message>
        <source>The documents cannot be served: %1.</source>
        <translation>Die Dokumente sind nicht abrufbar: %1.</translation>
    </message>
</context>
<context>
    <name>missing_content</name>
    <message>
        <source>The index has no programs, because this machine has no package lists. Connect it to a network, run "sudo apt update", then "%1".</source>
        <translation>Der Index hat keine Programme, weil dieser Rechner keine Paketlisten hat. Verbinden Sie ihn mit einem Netz und führen Sie erst "sudo apt update", dann "%1" aus.</translation>
    </message>
    <message>
        <source>The index has no pictures, because this machine has none where it looked. Install a package with pictures, then run "%1".</source>
        <translation>Der Index hat keine Bilder, weil dieser Rechner dort, wo gesucht wurde, keine hat. Installieren Sie ein Paket mit Bildern, und führen Sie dann "%1" aus.</translation>
    </message>
    <message>
        <source>The index has no pictures, because this machine has none where it looked. Run "%1 --pictures FOLDER" with a folder of pictures.</source>
        <translation>Der Index hat keine Bilder, weil dieser Rechner dort, wo gesucht wurde, keine hat. Führen Sie "%1 --pictures ORDNER" mit einem Ordner voller Bilder aus.</translation>
    </message>
</context>
<context>
    <name>page_head</name>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
</context>
</TS>
