<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>index.html</name>
    <message>
        <source>Quarrynet - Quarrynet manual</source>
        <translation>Quarrynet - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>The proxy</source>
        <translation>Der Proxy</translation>
    </message>
    <message>
        <source>The local services</source>
        <translation>Die lokalen Dienste</translation>
    </message>
    <message>
        <source>Quarrynet is one window with five search tabs. Type what you are looking for, press Enter, and double-click a result to open it in your desktop's default program.</source>
        <translation>Quarrynet ist ein Fenster mit fünf Registerkarten zum Suchen. Geben Sie ein, was Sie suchen, drücken Sie die Eingabetaste, und öffnen Sie ein Ergebnis durch Doppelklick im Standardprogramm Ihres Desktops.</translation>
    </message>
    <message>
        <source>The window as it starts</source>
        <translation>Das Fenster nach dem Start</translation>
    </message>
    <message>
        <source>What all tabs share</source>
        <translation>Was für alle Registerkarten gilt</translation>
    </message>
    <message>
        <source>Enter, or the Search button</source>
        <translation>Eingabetaste oder Schaltfläche Search</translation>
    </message>
    <message>
        <source>starts the search. The button stays grey until the response is complete. If you type something else meanwhile, the button becomes available again, and a new search replaces the old one.</source>
        <translation>startet die Suche. Die Schaltfläche bleibt grau, bis die Antwort vollständig ist. Wenn Sie währenddessen etwas anderes eingeben, wird sie wieder verfügbar, und eine neue Suche ersetzt die alte.</translation>
    </message>
    <message>
        <source>Escape, the Stop menu or the red button</source>
        <translation>Escape, das Menü Stop oder die rote Schaltfläche</translation>
    </message>
    <message>
        <source>cancels the search of the current tab; the other tabs continue theirs. The Specific File Search is the exception: there, Stop empties the list, but the search continues and fills the list when its response arrives. A download search that is still running is cancelled instead.</source>
        <translation>bricht die Suche der aktuellen Registerkarte ab; die anderen Registerkarten setzen ihre fort. Die Ausnahme ist Specific File Search: Dort leert Stop die Liste, die Suche läuft aber weiter und füllt die Liste, wenn ihre Antwort eintrifft. Stattdessen wird eine noch laufende Download-Suche abgebrochen.</translation>
    </message>
    <message>
        <source>The slider below the results</source>
        <translation>Der Schieberegler unter den Ergebnissen</translation>
    </message>
    <message>
        <source>requests another page. It becomes available when there is more than one page, and covers ten pages at a time; at its right end it moves on by nine. It says which page you see, such as "page 12 of 130"; a file search does not know how many there are. Drag it, click beside the thumb, or use the arrow keys. It does not move back to earlier pages by itself: to see the first ones again, repeat the search. The slider starts at page 1 again only if the service reports no page beyond its left end.</source>
        <translation>fordert eine andere Seite an. Er wird verfügbar, wenn es mehr als eine Seite gibt, und umfasst jeweils zehn Seiten; an seinem rechten Ende rückt er um neun weiter. Er sagt, welche Seite Sie sehen, etwa „Seite 12 von 130“; eine Dateisuche weiß nicht, wie viele es gibt. Ziehen Sie ihn, klicken Sie neben den Griff oder benutzen Sie die Pfeiltasten. Zu früheren Seiten rückt er nicht von selbst zurück: Um die ersten wieder zu sehen, wiederholen Sie die Suche. Er beginnt nur dann wieder bei Seite 1, wenn der Dienst keine Seite jenseits seines linken Endes meldet.</translation>
    </message>
    <message>
        <source>The status bar</source>
        <translation>Die Statusleiste</translation>
    </message>
    <message>
        <source>shows the connection on the left ("Connecting", "Connected", "Closed") and the step of the search on the right ("Requesting Data", "Downloading Data").</source>
        <translation>zeigt links die Verbindung („Connecting“ beim Aufbau, „Connected“, „Closed“ am Ende) und rechts den Schritt der Suche („Requesting Data“ beim Anfragen, „Downloading Data“ beim Empfangen).</translation>
    </message>
    <message>
        <source>The line below the tabs</source>
        <translation>Die Linie unter den Registerkarten</translation>
    </message>
    <message>
        <source>moves while the search of the current tab is running; it stands still where your desktop is set to avoid motion. If another program is in front when a search ends, the desktop marks the window.</source>
        <translation>bewegt sich, solange die Suche der aktuellen Registerkarte läuft; sie steht still, wenn Ihr Desktop Bewegung vermeiden soll. Ist ein anderes Programm vorn, wenn eine Suche endet, so kennzeichnet der Desktop das Fenster.</translation>
    </message>
    <message>
        <source>What the lists can do</source>
        <translation>Was die Listen können</translation>
    </message>
    <message>
        <source>Menu of a list</source>
        <translation>Menü einer Liste</translation>
    </message>
    <message>
        <source>The right mouse button, the Menu key and Shift+F10 open it. &lt;b&gt;Open&lt;/b&gt; does what a double click does. &lt;b&gt;Copy address&lt;/b&gt; copies the addresses of the selected rows, one a line; a program's address is the link on the download site, which leads to the file. &lt;b&gt;Copy rows&lt;/b&gt; copies the rows as they are shown, for a text or a table. Entries that have nothing to work with are grey. The rows of the page check have no address. The gallery has no menu.</source>
        <translation>Die rechte Maustaste, die Menütaste und Umschalt+F10 öffnen es. &lt;b&gt;Öffnen&lt;/b&gt; tut dasselbe wie ein Doppelklick. &lt;b&gt;Adresse kopieren&lt;/b&gt; kopiert die Adressen der ausgewählten Zeilen, eine pro Zeile; die Adresse eines Programms ist der Link auf der Download-Seite, der zur Datei führt. &lt;b&gt;Zeilen kopieren&lt;/b&gt; kopiert die Zeilen, wie sie gezeigt werden, für einen Text oder eine Tabelle. Einträge, die nichts zu tun haben, sind grau. Die Zeilen der Seitenprüfung haben keine Adresse. Die Galerie hat kein Menü.</translation>
    </message>
    <message>
        <source>Drag and drop</source>
        <translation>Ziehen und Ablegen</translation>
    </message>
    <message>
        <source>Drag selected rows into another program to give it their addresses. Drop a web address or a link file (&lt;code&gt;.url&lt;/code&gt;, &lt;code&gt;.desktop&lt;/code&gt;, &lt;code&gt;.webloc&lt;/code&gt;) on the window to put its address into the page check; you then type the keywords and start it yourself. The fields for words take dropped text as text.</source>
        <translation>Ziehen Sie ausgewählte Zeilen in ein anderes Programm, um ihm deren Adressen zu geben. Legen Sie eine Webadresse oder eine Linkdatei (&lt;code&gt;.url&lt;/code&gt;, &lt;code&gt;.desktop&lt;/code&gt;, &lt;code&gt;.webloc&lt;/code&gt;) auf dem Fenster ab, so kommt ihre Adresse in die Seitenprüfung; die Suchbegriffe geben Sie dann selbst ein, und Sie starten sie auch selbst. Die Felder für Suchbegriffe nehmen abgelegten Text als Text.</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filtern</translation>
    </message>
    <message>
        <source>Ctrl+F opens a line above the rows. Only rows that contain all of its words, in any column and in upper or lower case, stay visible; the number beside it says how many. Escape or the button closes the line.</source>
        <translation>Strg+F öffnet eine Eingabezeile über den Zeilen. Nur Zeilen, die alle ihre Wörter enthalten, gleich in welcher Spalte und ob groß oder klein geschrieben, bleiben sichtbar; die Zahl daneben sagt, wie viele das sind. Escape oder die Schaltfläche schließt die Eingabezeile.</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Sortieren</translation>
    </message>
    <message>
        <source>Click a caption to sort by its column, click again for the other direction, and a third time for the order of the page. Or choose &lt;b&gt;Sort by&lt;/b&gt; in the menu of the list. Sizes are compared as amounts, so 900 KB comes before 1 MB; rows without a size come last. The filter and the sorting end with the next results.</source>
        <translation>Klicken Sie auf eine Überschrift, um nach ihrer Spalte zu sortieren, noch einmal für die andere Richtung und ein drittes Mal für die Reihenfolge der Seite. Oder wählen Sie &lt;b&gt;Sortieren nach&lt;/b&gt; im Menü der Liste. Größen werden als Mengen verglichen, 900 KB steht also vor 1 MB; Zeilen ohne Größe stehen am Ende. Filter und Sortierung enden mit den nächsten Ergebnissen.</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>&lt;b&gt;Save List&lt;/b&gt; in the File menu, or Ctrl+S, saves the visible rows in their order, with their addresses in a column of their own. The extension of the file decides the format: &lt;code&gt;.csv&lt;/code&gt; for spreadsheets, &lt;code&gt;.json&lt;/code&gt; for programs, &lt;code&gt;.html&lt;/code&gt; for a browser. A name with another extension gets that of the chosen format in addition. An existing file is replaced completely or not at all. If you stop a search or it fails, you can still save the rows that it replaced, until the next results appear (unless they exceed 64 megabytes).</source>
        <translation>&lt;b&gt;Liste speichern&lt;/b&gt; im Menü File oder Strg+S speichert die sichtbaren Zeilen in ihrer Reihenfolge, mit ihren Adressen in einer eigenen Spalte. Die Endung der Datei bestimmt das Format: &lt;code&gt;.csv&lt;/code&gt; für Tabellenkalkulationen, &lt;code&gt;.json&lt;/code&gt; für Programme, &lt;code&gt;.html&lt;/code&gt; für einen Browser. Ein Name mit einer anderen Endung erhält zusätzlich die des gewählten Formats. Eine vorhandene Datei wird ganz ersetzt oder gar nicht. Wenn Sie eine Suche abbrechen oder sie fehlschlägt, können Sie die Zeilen, die sie ersetzt hat, noch speichern, bis die nächsten Ergebnisse erscheinen (außer wenn sie mehr als 64 Megabyte umfassen).</translation>
    </message>
    <message>
        <source>The CSV file is UTF-8 with commas between the cells and every cell in quotes; if a spreadsheet shows wrong letters or a single column, import the file as such. A cell that a spreadsheet would calculate as a formula, because it begins with one of &lt;code&gt;= + - @&lt;/code&gt;, has an apostrophe in front; the same applies behind a semicolon within a cell, and to copied rows and addresses, dragged rows and HTML files.</source>
        <translation>Die CSV-Datei ist UTF-8 mit Kommas zwischen den Zellen und jeder Zelle in Anführungszeichen; wenn eine Tabellenkalkulation falsche Buchstaben oder nur eine Spalte zeigt, importieren Sie die Datei als solche. Eine Zelle, die eine Tabellenkalkulation als Formel berechnen würde, weil sie mit einem der Zeichen &lt;code&gt;= + - @&lt;/code&gt; beginnt, hat einen Apostroph davor; dasselbe gilt hinter einem Semikolon innerhalb einer Zelle, und auch für kopierte Zeilen und Adressen, gezogene Zeilen und HTML-Dateien.</translation>
    </message>
    <message>
        <source>Run one search at a time for a reliable result. All tabs share one receive buffer, so the responses of two simultaneous searches can mix.</source>
        <translation>Führen Sie für verlässliche Ergebnisse immer nur eine Suche aus. Alle Registerkarten teilen sich einen Empfangspuffer, daher können sich die Antworten zweier gleichzeitiger Suchen vermischen.</translation>
    </message>
    <message>
        <source>When nothing answers</source>
        <translation>Wenn nichts antwortet</translation>
    </message>
    <message>
        <source>The searches need services, which are programs of their own. A box with "Error #:" means that none answered:</source>
        <translation>Die Suchen brauchen Dienste, das sind eigene Programme. Eine Meldung mit „Error #:“ bedeutet, dass keiner geantwortet hat:</translation>
    </message>
    <message>
        <source>number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>meaning</source>
        <translation>Bedeutung</translation>
    </message>
    <message>
        <source>what to do</source>
        <translation>Abhilfe</translation>
    </message>
    <message>
        <source>no service is running at the address</source>
        <translation>unter der Adresse läuft kein Dienst</translation>
    </message>
    <message>
        <source>on Linux, type &lt;code&gt;quarrynet-services status&lt;/code&gt; in a terminal: it says what is missing and how to start &lt;a href="services.html"&gt;the local services&lt;/a&gt;; on Windows, where there are none, use &lt;a href="services.html#windows"&gt;those of a Linux machine&lt;/a&gt;</source>
        <translation>unter Linux in einem Terminal &lt;code&gt;quarrynet-services status&lt;/code&gt; eingeben: das sagt, was fehlt und wie sich &lt;a href="services.html"&gt;die lokalen Dienste&lt;/a&gt; starten lassen; unter Windows, wo es keine gibt, &lt;a href="services.html#windows"&gt;die eines Linux-Rechners&lt;/a&gt; benutzen</translation>
    </message>
    <message>
        <source>there is no computer of this name</source>
        <translation>es gibt keinen Rechner mit diesem Namen</translation>
    </message>
    <message>
        <source>correct the name in the file &lt;code&gt;Quarrynet.ini&lt;/code&gt; (&lt;a href="services.html#others"&gt;other services&lt;/a&gt;) or of &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt;</source>
        <translation>den Namen in der Datei &lt;code&gt;Quarrynet.ini&lt;/code&gt; (&lt;a href="services.html#others"&gt;andere Dienste&lt;/a&gt;) oder den Namen &lt;a href="proxy.html"&gt;des Proxys&lt;/a&gt; berichtigen</translation>
    </message>
    <message>
        <source>the computer is out of reach</source>
        <translation>der Rechner ist nicht erreichbar</translation>
    </message>
    <message>
        <source>check the network and the address; where only a proxy leads out, switch &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; on</source>
        <translation>Netzwerk und Adresse prüfen; wo nur ein Proxy nach außen führt, &lt;a href="proxy.html"&gt;den Proxy&lt;/a&gt; einschalten</translation>
    </message>
    <message>
        <source>If a service answers but finds nothing at all, its index may be missing or still in the making; &lt;code&gt;quarrynet-services status&lt;/code&gt; says so too.</source>
        <translation>Wenn ein Dienst antwortet, aber gar nichts findet, fehlt vielleicht sein Index oder entsteht noch; auch das sagt &lt;code&gt;quarrynet-services status&lt;/code&gt;.</translation>
    </message>
    <message>
        <source>Where systemd does not run, in a container for example, nobody has started the services or made their index. Type &lt;code&gt;quarrynet-services index&lt;/code&gt; once in a terminal, and then &lt;code&gt;quarrynet-services serve&lt;/code&gt;. If it may not use port 80, switch &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; on and enter 127.0.0.1 and 8780.</source>
        <translation>Wo systemd nicht läuft, etwa in einem Container, hat niemand die Dienste gestartet oder ihren Index gemacht. Geben Sie in einem Terminal einmal &lt;code&gt;quarrynet-services index&lt;/code&gt; und dann &lt;code&gt;quarrynet-services serve&lt;/code&gt; ein. Wenn es Port 80 nicht verwenden darf, schalten Sie &lt;a href="proxy.html"&gt;den Proxy&lt;/a&gt; ein und geben 127.0.0.1 und 8780 ein.</translation>
    </message>
    <message>
        <source>Words</source>
        <translation>Suchbegriffe</translation>
    </message>
    <message>
        <source>Spaces before and after your words are ignored, and a space between two words is sent as "+". Everything else is sent as typed. Each service decides what the words mean; see &lt;a href="services.html"&gt;the local services&lt;/a&gt; for theirs.</source>
        <translation>Leerzeichen vor und nach den Suchbegriffen werden ignoriert, und ein Leerzeichen zwischen zwei Wörtern wird als „+“ gesendet. Alles andere wird so gesendet, wie es eingegeben wurde. Was die Wörter bedeuten, bestimmt der jeweilige Dienst; siehe &lt;a href="services.html"&gt;die lokalen Dienste&lt;/a&gt;.</translation>
    </message>
    <message>
        <source>From a terminal or a menu</source>
        <translation>Aus einem Terminal oder einem Menü</translation>
    </message>
    <message>
        <source>&lt;code&gt;quarrynet --tab image&lt;/code&gt; shows a tab when the program starts: 1 to 5, or web, page, image, download or file. Words behind the options are searched for at once: &lt;code&gt;quarrynet --tab web text editor&lt;/code&gt;. Without &lt;code&gt;--tab&lt;/code&gt;, words go to the web search, and an address that begins with "http://" or "https://" goes to the page check. Further words are the page's keywords; if there are none, type them. Words that begin with a dash go behind &lt;code&gt;--&lt;/code&gt;. &lt;code&gt;quarrynet --help&lt;/code&gt; lists all options.</source>
        <translation>&lt;code&gt;quarrynet --tab image&lt;/code&gt; zeigt beim Start eine Registerkarte: 1 bis 5, oder web, page, image, download oder file. Wörter nach den Optionen werden sofort gesucht: &lt;code&gt;quarrynet --tab web text editor&lt;/code&gt;. Ohne &lt;code&gt;--tab&lt;/code&gt; gehen Wörter an die Websuche, und eine Adresse, die mit „http://“ oder „https://“ beginnt, geht an die Seitenprüfung. Weitere Wörter sind die Suchbegriffe für die Seite; fehlen sie, geben Sie sie ein. Wörter, die mit einem Bindestrich beginnen, gehören hinter &lt;code&gt;--&lt;/code&gt;. &lt;code&gt;quarrynet --help&lt;/code&gt; nennt alle Optionen.</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>The program remembers what you searched for and offers it when you type. View &amp;gt; Keep History switches that off.</source>
        <translation>Das Programm merkt sich, wonach Sie gesucht haben, und schlägt es beim Tippen vor. View &amp;gt; Verlauf aufzeichnen schaltet das aus.</translation>
    </message>
    <message>
        <source>While you type, a list below the field shows the earlier entries that contain the typed text, newest first. The Down key opens it as well; in an empty field it shows all entries, and so does a click if the field already has the keyboard. Keywords, page addresses and file names have a list each.</source>
        <translation>Während Sie tippen, zeigt eine Liste unter dem Feld die früheren Einträge, die den eingegebenen Text enthalten, die neuesten zuerst. Auch die Taste Ab öffnet sie; in einem leeren Feld zeigt sie alle Einträge, ebenso wie ein Klick, wenn das Feld schon die Tastatur hat. Suchbegriffe, Seitenadressen und Dateinamen haben je eine eigene Liste.</translation>
    </message>
    <message>
        <source>Nothing is taken from the list until you choose it. Choose an entry with the Down and Up keys and press Enter to search for it, or click it to take it into the field. Enter without a chosen entry searches for what you typed.</source>
        <translation>Aus der Liste wird nichts übernommen, bevor Sie es auswählen. Wählen Sie einen Eintrag mit den Tasten Ab und Auf und drücken Sie die Eingabetaste, um danach zu suchen, oder klicken Sie ihn an, um ihn in das Feld zu übernehmen. Die Eingabetaste ohne ausgewählten Eintrag sucht nach dem, was Sie eingegeben haben.</translation>
    </message>
    <message>
        <source>Escape closes the list and stops the search, if one runs. Delete removes the chosen entry from the history; with the mouse, press the right button on an entry and choose &lt;b&gt;Remove from History&lt;/b&gt;.</source>
        <translation>Escape schließt die Liste und bricht die Suche ab, wenn eine läuft. Entf löscht den ausgewählten Eintrag aus dem Verlauf; mit der Maus drücken Sie die rechte Taste auf einem Eintrag und wählen &lt;b&gt;Aus dem Verlauf löschen&lt;/b&gt;.</translation>
    </message>
    <message>
        <source>An entry is added when a search starts. The newest 100 of each list are kept. Texts of more than 2,000 bytes and addresses with a user name or a password ("user:password@host") are not kept. A password elsewhere in an address, such as behind a "?", is not recognised.</source>
        <translation>Ein Eintrag entsteht, wenn eine Suche beginnt. Von jeder Liste bleiben die neuesten 100 erhalten. Texte von mehr als 2.000 Byte und Adressen mit einem Benutzernamen oder Passwort („user:password@host“) werden nicht aufgezeichnet. Ein Passwort an anderer Stelle einer Adresse, etwa hinter einem „?“, wird nicht erkannt.</translation>
    </message>
    <message>
        <source>View &amp;gt; Clear History deletes all entries. While Keep History is off, nothing is written and nothing is offered; entries from before stay until you clear them.</source>
        <translation>View &amp;gt; Verlauf löschen entfernt alle Einträge. Solange das Aufzeichnen ausgeschaltet ist, wird nichts geschrieben und nichts vorgeschlagen; ältere Einträge bleiben, bis Sie sie löschen.</translation>
    </message>
    <message>
        <source>The history is in the file &lt;code&gt;Quarrynet.history&lt;/code&gt; beside &lt;a href="proxy.html"&gt;the settings&lt;/a&gt;. Only you can read it. The switch is the section &lt;code&gt;[History]&lt;/code&gt; of the settings.</source>
        <translation>Der Verlauf steht in der Datei &lt;code&gt;Quarrynet.history&lt;/code&gt; neben &lt;a href="proxy.html"&gt;den Einstellungen&lt;/a&gt;. Nur Sie können sie lesen. Der Schalter ist der Abschnitt &lt;code&gt;[History]&lt;/code&gt; der Einstellungen.</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>This manual and the texts that explain the window are in the language of your desktop if the program has it: English and German. &lt;code&gt;quarrynet --language de&lt;/code&gt; chooses one. The captions of the window are English in every language.</source>
        <translation>Dieses Handbuch und die Texte, die das Fenster erläutern, erscheinen in der Sprache Ihres Desktops, wenn das Programm sie beherrscht: Englisch und Deutsch. &lt;code&gt;quarrynet --language de&lt;/code&gt; wählt eine davon. Die Beschriftungen des Fensters sind in jeder Sprache englisch.</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Everything in the window, text included, grows and shrinks with the window. The smallest size is half the initial size. If your desktop's font is too large for the initial window, the window uses a smaller one.</source>
        <translation>Alles im Fenster, auch der Text, wächst und schrumpft mit dem Fenster. Die kleinste Größe ist die halbe Anfangsgröße. Wenn die Schrift Ihres Desktops für das anfängliche Fenster zu groß ist, benutzt das Fenster eine kleinere.</translation>
    </message>
    <message>
        <source>The program remembers where its window was when you closed it, and the columns of the download and file lists if you have changed their widths; the next window starts there. A place that is not on a screen any more is not used, and on Wayland the desktop alone decides about the place. The size, the tab and the other columns always start the same. View &amp;gt; Forget Place and Columns gives the columns their original widths, and the next window a place of the desktop's choice. All this is in the file &lt;code&gt;Quarrynet.state&lt;/code&gt; beside &lt;a href="proxy.html"&gt;the settings&lt;/a&gt;.</source>
        <translation>Das Programm merkt sich, wo sein Fenster beim Schließen war, und die Spalten der Download- und der Dateiliste, wenn Sie deren Breite geändert haben; das nächste Fenster beginnt dort. Ein Platz, der auf keinem Bildschirm mehr liegt, wird nicht benutzt, und unter Wayland bestimmt allein der Desktop den Platz. Größe, Registerkarte und die übrigen Spalten sind am Anfang immer gleich. View &amp;gt; Platz und Spalten vergessen gibt den Spalten ihre ursprüngliche Breite und dem nächsten Fenster einen Platz, den der Desktop wählt. All dies steht in der Datei &lt;code&gt;Quarrynet.state&lt;/code&gt; neben &lt;a href="proxy.html"&gt;den Einstellungen&lt;/a&gt;.</translation>
    </message>
</context>
<context>
    <name>downloads.html</name>
    <message>
        <source>Search For Downloads - Quarrynet manual</source>
        <translation>Search For Downloads - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Finds programs for your keywords and shows their name, description, operating system, size and license, 25 per page.</source>
        <translation>Findet Programme zu Ihren Suchbegriffen und zeigt Name, Beschreibung, Betriebssystem, Größe und Lizenz, 25 pro Seite.</translation>
    </message>
    <message>
        <source>Programs for chess</source>
        <translation>Schachprogramme</translation>
    </message>
    <message>
        <source>Double-click a program to download it. Quarrynet first asks the download site for the real address, which takes a moment; a small box says so and closes by itself. The address then opens in your browser.</source>
        <translation>Doppelklicken Sie auf ein Programm, um es herunterzuladen. Quarrynet fragt zuerst die Download-Seite nach der eigentlichen Adresse, was einen Augenblick dauert; ein kleines Fenster weist darauf hin und schließt sich von selbst. Dann öffnet sich die Adresse in Ihrem Browser.</translation>
    </message>
    <message>
        <source>If the site names no address, its front page opens instead.</source>
        <translation>Nennt die Download-Seite keine Adresse, öffnet sich stattdessen ihre Startseite.</translation>
    </message>
    <message>
        <source>Copy, save, sort and filter the rows as &lt;a href="index.html#lists"&gt;in all lists&lt;/a&gt;.</source>
        <translation>Kopieren, speichern, sortieren und filtern Sie die Zeilen wie &lt;a href="index.html#lists"&gt;in allen Listen&lt;/a&gt;.</translation>
    </message>
</context>
<context>
    <name>files.html</name>
    <message>
        <source>Specific File Search - Quarrynet manual</source>
        <translation>Specific File Search - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Finds files and directories on servers by their name, or by a part of it, twenty per page.</source>
        <translation>Findet Dateien und Ordner auf Servern nach ihrem Namen oder einem Teil davon, zwanzig pro Seite.</translation>
    </message>
    <message>
        <source>Files whose names hold the typed text</source>
        <translation>Dateien, deren Namen den eingegebenen Text enthalten</translation>
    </message>
    <message>
        <source>Double-click a row to open its address. The address of a mirror or of a crawled web server begins with "http" and opens in your browser; that of an FTP server begins with "ftp". Many browsers no longer support FTP, but file managers and FTP programs do.</source>
        <translation>Doppelklicken Sie auf eine Zeile, um ihre Adresse zu öffnen. Die Adresse eines Spiegelservers oder eines eingelesenen Webservers beginnt mit „http“ und öffnet sich in Ihrem Browser; die eines FTP-Servers beginnt mit „ftp“. Viele Browser unterstützen FTP nicht mehr, Dateimanager und FTP-Programme dagegen schon.</translation>
    </message>
    <message>
        <source>"&amp;lt;Dir&amp;gt;" in the size column marks a directory.</source>
        <translation>„&amp;lt;Dir&amp;gt;“ in der Größenspalte kennzeichnet einen Ordner.</translation>
    </message>
    <message>
        <source>"No more site found" means that you are past the last page.</source>
        <translation>„No more site found“ bedeutet, dass Sie über die letzte Seite hinaus sind.</translation>
    </message>
</context>
<context>
    <name>images.html</name>
    <message>
        <source>Image Search - Quarrynet manual</source>
        <translation>Image Search - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Finds pictures for your keywords and shows up to ten thumbnails per page. Click a thumbnail to open the full picture in your browser.</source>
        <translation>Findet Bilder zu Ihren Suchbegriffen und zeigt bis zu zehn Vorschaubilder pro Seite. Klicken Sie auf ein Vorschaubild, um das ganze Bild in Ihrem Browser zu öffnen.</translation>
    </message>
    <message>
        <source>A gallery of pictures</source>
        <translation>Eine Galerie von Bildern</translation>
    </message>
    <message>
        <source>The gallery is a page in the program's folder. A browser engine shows it, and starts when you first open this tab. If the engine is missing, cannot start in its sandbox (as for root) or hangs on a page, a plain view shows the same thumbnails and says why.</source>
        <translation>Die Galerie ist eine Seite im Ordner des Programms. Eine Browser-Engine zeigt sie an; sie startet, wenn Sie diese Registerkarte zum ersten Mal öffnen. Wenn die Engine fehlt, nicht in ihrer Sandbox starten kann (wie für root) oder an einer Seite hängen bleibt, zeigt eine einfache Ansicht dieselben Vorschaubilder und nennt den Grund.</translation>
    </message>
    <message>
        <source>The gallery has as many columns as fit, in the desktop's colours and font. The arrow keys, Home and End go from picture to picture, and Enter opens the chosen one, as a click does. Ctrl+Plus, Ctrl+Minus and Ctrl+0, or Ctrl with the mouse wheel, change its size.</source>
        <translation>Die Galerie hat so viele Spalten, wie hineinpassen, in den Farben und der Schrift des Desktops. Die Pfeiltasten, Pos1 und Ende führen von Bild zu Bild, und die Eingabetaste öffnet das ausgewählte wie ein Klick. Strg+Plus, Strg+Minus und Strg+0 oder Strg mit dem Mausrad ändern ihre Größe.</translation>
    </message>
    <message>
        <source>A caption is cut after four lines until its picture is chosen; the tool tip shows the address and, if the results state it, the size of the full picture. A dashed frame stands in place of a picture that does not load.</source>
        <translation>Eine Bildunterschrift ist nach vier Zeilen abgeschnitten, bis ihr Bild ausgewählt ist; der Tooltip zeigt die Adresse und, wenn die Ergebnisse sie angeben, die Größe des vollen Bildes. Anstelle eines Bildes, das sich nicht laden lässt, steht ein gestrichelter Rahmen.</translation>
    </message>
    <message>
        <source>The view is locked down: it loads nothing but thumbnails (PNG, JPEG, GIF and WebP), runs no scripts, stores nothing, and has no menus.</source>
        <translation>Die Ansicht ist abgeschottet: Sie lädt nur Vorschaubilder (PNG, JPEG, GIF und WebP), führt keine Skripte aus, speichert nichts und hat keine Menüs.</translation>
    </message>
    <message>
        <source>Through a proxy, the slider of the first tab chooses the page of results.</source>
        <translation>Über einen Proxy bestimmt der Schieberegler der ersten Registerkarte die Ergebnisseite.</translation>
    </message>
</context>
<context>
    <name>keys.html</name>
    <message>
        <source>Keys - Quarrynet manual</source>
        <translation>Tasten - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Everything in the window can be done without a mouse. While a dialog or a box is open, only its own keys work.</source>
        <translation>Alles im Fenster ist ohne Maus möglich. Solange ein Dialog oder eine Meldung geöffnet ist, wirken nur deren eigene Tasten.</translation>
    </message>
    <message>
        <source>Anywhere in the window</source>
        <translation>Überall im Fenster</translation>
    </message>
    <message>
        <source>key</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>effect</source>
        <translation>Wirkung</translation>
    </message>
    <message>
        <source>Ctrl+1 to Ctrl+5, or Alt+1 to Alt+5</source>
        <translation>Strg+1 bis Strg+5 oder Alt+1 bis Alt+5</translation>
    </message>
    <message>
        <source>shows the first to the fifth tab</source>
        <translation>zeigt die erste bis fünfte Registerkarte</translation>
    </message>
    <message>
        <source>Ctrl+Tab, Ctrl+Shift+Tab</source>
        <translation>Strg+Tab, Strg+Umschalt+Tab</translation>
    </message>
    <message>
        <source>shows the next or the previous tab; after the last comes the first</source>
        <translation>zeigt die nächste oder vorige Registerkarte; auf die letzte folgt die erste</translation>
    </message>
    <message>
        <source>Ctrl+L</source>
        <translation>Strg+L</translation>
    </message>
    <message>
        <source>goes to the first field of the tab and selects its text</source>
        <translation>führt zum ersten Feld der Registerkarte und wählt dessen Text aus</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>presses the Search button, which repeats the search; nothing happens while the button is grey</source>
        <translation>drückt die Schaltfläche Search, was die Suche wiederholt; solange die Schaltfläche grau ist, geschieht nichts</translation>
    </message>
    <message>
        <source>Ctrl+F</source>
        <translation>Strg+F</translation>
    </message>
    <message>
        <source>opens a line that &lt;a href="index.html#filter"&gt;filters the list&lt;/a&gt; of the tab</source>
        <translation>öffnet eine Eingabezeile, die &lt;a href="index.html#filter"&gt;die Liste&lt;/a&gt; der Registerkarte filtert</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Strg+S</translation>
    </message>
    <message>
        <source>&lt;a href="index.html#save"&gt;saves the list&lt;/a&gt; of the tab</source>
        <translation>&lt;a href="index.html#save"&gt;speichert die Liste&lt;/a&gt; der Registerkarte</translation>
    </message>
    <message>
        <source>Escape</source>
        <translation>Escape</translation>
    </message>
    <message>
        <source>stops the search of the tab</source>
        <translation>bricht die Suche der Registerkarte ab</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>opens this manual</source>
        <translation>öffnet dieses Handbuch</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Strg+Q</translation>
    </message>
    <message>
        <source>ends the program</source>
        <translation>beendet das Programm</translation>
    </message>
    <message>
        <source>Tab, Shift+Tab</source>
        <translation>Tab, Umschalt+Tab</translation>
    </message>
    <message>
        <source>go to the next or the previous control</source>
        <translation>führen zum nächsten oder vorigen Bedienelement</translation>
    </message>
    <message>
        <source>Alt+F, Alt+V, Alt+H</source>
        <translation>Alt+F, Alt+V, Alt+H</translation>
    </message>
    <message>
        <source>open the menus</source>
        <translation>öffnen die Menüs</translation>
    </message>
    <message>
        <source>Alt+S</source>
        <translation>Alt+S</translation>
    </message>
    <message>
        <source>presses the Search button</source>
        <translation>drückt die Schaltfläche Search</translation>
    </message>
    <message>
        <source>With a screen reader you hear how each search ended, such as "30 of 1,234 results"; of a search in another tab, with the name of its tab.</source>
        <translation>Mit einem Bildschirmleser hören Sie, wie jede Suche endete, etwa „30 von 1.234 Ergebnissen“; bei einer Suche auf einer anderen Registerkarte mit deren Namen.</translation>
    </message>
    <message>
        <source>In a field</source>
        <translation>In einem Feld</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabetaste</translation>
    </message>
    <message>
        <source>starts the search; in the address of a page, goes to the keywords</source>
        <translation>startet die Suche; in der Adresse einer Seite führt sie zu den Suchbegriffen</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>opens the list of earlier entries, if &lt;a href="index.html#history"&gt;the history&lt;/a&gt; is on</source>
        <translation>öffnet die Liste früherer Einträge, wenn &lt;a href="index.html#history"&gt;der Verlauf&lt;/a&gt; eingeschaltet ist</translation>
    </message>
    <message>
        <source>In the list of earlier entries</source>
        <translation>In der Liste früherer Einträge</translation>
    </message>
    <message>
        <source>Down, Up</source>
        <translation>Ab, Auf</translation>
    </message>
    <message>
        <source>choose an entry</source>
        <translation>wählen einen Eintrag aus</translation>
    </message>
    <message>
        <source>takes the chosen entry and does what Enter does in the field</source>
        <translation>übernimmt den ausgewählten Eintrag und bewirkt, was die Eingabetaste im Feld bewirkt</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>removes the chosen entry from the history</source>
        <translation>löscht den ausgewählten Eintrag aus dem Verlauf</translation>
    </message>
    <message>
        <source>closes the list, keeps the typed text and stops the search of the tab</source>
        <translation>schließt die Liste, behält den eingegebenen Text und bricht die Suche der Registerkarte ab</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>closes the list and goes to the next control</source>
        <translation>schließt die Liste und führt zum nächsten Bedienelement</translation>
    </message>
    <message>
        <source>Alt, Ctrl and function keys</source>
        <translation>Tasten mit Alt oder Strg, Funktionstasten</translation>
    </message>
    <message>
        <source>close the list and do what they do without it</source>
        <translation>schließen die Liste und tun, was sie ohne sie tun</translation>
    </message>
    <message>
        <source>In a list of results</source>
        <translation>In einer Ergebnisliste</translation>
    </message>
    <message>
        <source>opens the selected rows, like a double click</source>
        <translation>öffnet die ausgewählten Zeilen, wie ein Doppelklick</translation>
    </message>
    <message>
        <source>Ctrl+C</source>
        <translation>Strg+C</translation>
    </message>
    <message>
        <source>copies the selected rows</source>
        <translation>kopiert die ausgewählten Zeilen</translation>
    </message>
    <message>
        <source>Ctrl+A</source>
        <translation>Strg+A</translation>
    </message>
    <message>
        <source>selects all rows; in the list of the Specific File Search, only one row can be selected</source>
        <translation>wählt alle Zeilen aus; in der Liste von Specific File Search kann nur eine Zeile ausgewählt werden</translation>
    </message>
    <message>
        <source>the Menu key, or Shift+F10</source>
        <translation>die Menütaste oder Umschalt+F10</translation>
    </message>
    <message>
        <source>opens the menu of the list at the current row</source>
        <translation>öffnet das Menü der Liste an der aktuellen Zeile</translation>
    </message>
    <message>
        <source>Shift+F1</source>
        <translation>Umschalt+F1</translation>
    </message>
    <message>
        <source>shows the whole text of the cells of the current row that are cut off; the next key hides it</source>
        <translation>zeigt den ganzen Text der abgeschnittenen Zellen der aktuellen Zeile; die nächste Taste blendet ihn aus</translation>
    </message>
    <message>
        <source>In the line that filters a list</source>
        <translation>In der Eingabezeile, die eine Liste filtert</translation>
    </message>
    <message>
        <source>Enter, Down, Page Down</source>
        <translation>Eingabetaste, Ab, Bild ab</translation>
    </message>
    <message>
        <source>go to the rows</source>
        <translation>führen zu den Zeilen</translation>
    </message>
    <message>
        <source>closes the line and shows all rows; it does not stop a search</source>
        <translation>schließt die Eingabezeile und zeigt alle Zeilen; eine Suche bricht sie nicht ab</translation>
    </message>
    <message>
        <source>On the slider</source>
        <translation>Auf dem Schieberegler</translation>
    </message>
    <message>
        <source>Right, Up, Page Up</source>
        <translation>Rechts, Auf, Bild auf</translation>
    </message>
    <message>
        <source>request the next page</source>
        <translation>fordern die nächste Seite an</translation>
    </message>
    <message>
        <source>Left, Down, Page Down</source>
        <translation>Links, Ab, Bild ab</translation>
    </message>
    <message>
        <source>request the previous page</source>
        <translation>fordern die vorige Seite an</translation>
    </message>
    <message>
        <source>Home, End</source>
        <translation>Pos1, Ende</translation>
    </message>
    <message>
        <source>request the first or the last page of the slider</source>
        <translation>fordern die erste oder letzte Seite des Schiebereglers an</translation>
    </message>
    <message>
        <source>In the gallery</source>
        <translation>In der Galerie</translation>
    </message>
    <message>
        <source>Arrow keys</source>
        <translation>Pfeiltasten</translation>
    </message>
    <message>
        <source>choose the picture beside, above or below</source>
        <translation>wählen das Bild daneben, darüber oder darunter aus</translation>
    </message>
    <message>
        <source>choose the first or the last picture</source>
        <translation>wählen das erste oder letzte Bild aus</translation>
    </message>
    <message>
        <source>opens the chosen picture in your browser, as a click does</source>
        <translation>öffnet das ausgewählte Bild wie ein Klick im Browser</translation>
    </message>
    <message>
        <source>Ctrl+Plus, Ctrl+Minus, Ctrl+0</source>
        <translation>Strg+Plus, Strg+Minus, Strg+0</translation>
    </message>
    <message>
        <source>make the gallery larger, smaller, or as large as at the start</source>
        <translation>vergrößern oder verkleinern die Galerie oder geben ihr die Größe vom Anfang zurück</translation>
    </message>
    <message>
        <source>The gallery keeps Alt with any key, F5, Ctrl+N and Ctrl+R for its page, which ignores them. To use one of them, go to another control first, with Tab or Ctrl+L. All other keys of this page work in the gallery, too.</source>
        <translation>Die Galerie behält Alt mit jeder Taste, F5, Strg+N und Strg+R für ihre Seite, die sie nicht beachtet. Um eine davon zu benutzen, gehen Sie zuerst mit Tab oder Strg+L zu einem anderen Bedienelement. Alle anderen Tasten dieser Seite wirken auch in der Galerie.</translation>
    </message>
</context>
<context>
    <name>page.html</name>
    <message>
        <source>Specific Page Search - Quarrynet manual</source>
        <translation>Specific Page Search - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Checks whether your keywords occur in the text of a page, given its address. HTML tags and letter case are ignored, and a word is also found inside a longer one: "apple" is in "pineapple".</source>
        <translation>Prüft, ob Ihre Suchbegriffe im Text einer Seite vorkommen, deren Adresse Sie angeben. HTML-Tags und Groß- und Kleinschreibung werden nicht beachtet, und ein Wort wird auch innerhalb eines längeren gefunden: „Apfel“ steht in „Apfelbaum“.</translation>
    </message>
    <message>
        <source>Three words on one page, one of them missing</source>
        <translation>Drei Wörter auf einer Seite, von denen eines fehlt</translation>
    </message>
    <message>
        <source>shows a row for each word, "Found" or "Not Found".</source>
        <translation>zeigt eine Zeile für jedes Wort, „Found“ (gefunden) oder „Not Found“ (nicht gefunden).</translation>
    </message>
    <message>
        <source>shows a row for each word if all words occur, otherwise one row that says so.</source>
        <translation>zeigt eine Zeile für jedes Wort, wenn alle Wörter vorkommen, sonst eine einzige Zeile, die darauf hinweist.</translation>
    </message>
    <message>
        <source>looks for the whole text as typed, as one phrase.</source>
        <translation>sucht den ganzen Text so, wie er eingegeben wurde, als eine Wortfolge.</translation>
    </message>
    <message>
        <source>The address may begin with "http://" or not; such a page is fetched from port 80 without encryption. A page whose address begins with "https://" is fetched from port 443 over TLS 1.2 or later. Addresses that name another port cannot be checked, and redirects are not followed.</source>
        <translation>Die Adresse kann mit „http://“ beginnen oder nicht; eine solche Seite wird unverschlüsselt von Port 80 abgerufen. Eine Seite, deren Adresse mit „https://“ beginnt, wird über TLS 1.2 oder neuer von Port 443 abgerufen. Adressen, die einen anderen Port nennen, können nicht geprüft werden, und Weiterleitungen wird nicht gefolgt.</translation>
    </message>
    <message>
        <source>The certificate of an https server must be valid, issued for the server's name, and issued by an authority that your system trusts. Otherwise nothing is sent, and the error box says what is wrong:</source>
        <translation>Das Zertifikat eines https-Servers muss gültig und auf den Namen des Servers ausgestellt sein, und zwar von einer Stelle, der Ihr System vertraut. Andernfalls wird nichts gesendet, und die Fehlermeldung nennt den Grund:</translation>
    </message>
    <message>
        <source>Error #</source>
        <translation>Error #</translation>
    </message>
    <message>
        <source>Meaning</source>
        <translation>Bedeutung</translation>
    </message>
    <message>
        <source>the certificate has expired or is not valid yet; check your clock, too</source>
        <translation>das Zertifikat ist abgelaufen oder noch nicht gültig; prüfen Sie auch Ihre Uhr</translation>
    </message>
    <message>
        <source>the certificate is for another name</source>
        <translation>das Zertifikat gilt für einen anderen Namen</translation>
    </message>
    <message>
        <source>the certificate is self-signed, or its issuer is unknown to your system</source>
        <translation>das Zertifikat ist selbst signiert, oder Ihr System kennt seinen Aussteller nicht</translation>
    </message>
    <message>
        <source>the certificate is invalid in another way, or revoked</source>
        <translation>das Zertifikat ist aus einem anderen Grund ungültig oder widerrufen</translation>
    </message>
    <message>
        <source>the server demands a certificate of its clients</source>
        <translation>der Server verlangt ein Zertifikat von seinen Clients</translation>
    </message>
    <message>
        <source>the server does not speak TLS, or only versions before 1.2</source>
        <translation>der Server beherrscht TLS nicht oder nur in Versionen vor 1.2</translation>
    </message>
    <message>
        <source>the connection was cut, so part of the page may be missing</source>
        <translation>die Verbindung wurde unterbrochen, daher kann ein Teil der Seite fehlen</translation>
    </message>
    <message>
        <source>no TLS library is installed</source>
        <translation>es ist keine TLS-Bibliothek installiert</translation>
    </message>
    <message>
        <source>You can drop a web address or a link file on the window; see &lt;a href="index.html#lists"&gt;what the lists can do&lt;/a&gt;.</source>
        <translation>Sie können eine Webadresse oder eine Linkdatei auf dem Fenster ablegen; siehe &lt;a href="index.html#lists"&gt;was die Listen können&lt;/a&gt;.</translation>
    </message>
    <message>
        <source>A text that its column cuts off is shown completely when the mouse rests on it.</source>
        <translation>Ein Text, den seine Spalte abschneidet, wird ganz gezeigt, wenn die Maus darauf ruht.</translation>
    </message>
    <message>
        <source>Enter in the address field moves to the keywords; Enter there starts the search.</source>
        <translation>Die Eingabetaste im Adressfeld führt zu den Suchbegriffen; dort startet sie die Suche.</translation>
    </message>
    <message>
        <source>While &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; is on, this tab opens no connection, and the Search button stays grey after a click. Stop then does nothing, because there is no connection to close. Switch the proxy off and type something to get the button back.</source>
        <translation>Solange &lt;a href="proxy.html"&gt;der Proxy&lt;/a&gt; eingeschaltet ist, öffnet diese Registerkarte keine Verbindung, und die Schaltfläche Search bleibt nach einem Klick grau. Stop bewirkt dann nichts, weil es keine Verbindung zu schließen gibt. Schalten Sie den Proxy aus und geben Sie etwas ein, um die Schaltfläche wieder benutzen zu können.</translation>
    </message>
</context>
<context>
    <name>proxy.html</name>
    <message>
        <source>The proxy - Quarrynet manual</source>
        <translation>Der Proxy - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Choose View &amp;gt; Proxy, or the first button of the toolbar, to send the searches through an HTTP proxy. Tick "Enable Proxy" and enter host and port; both are required. The next search uses them.</source>
        <translation>Mit View &amp;gt; Proxy oder der ersten Schaltfläche der Werkzeugleiste leiten Sie die Suchen über einen HTTP-Proxy. Kreuzen Sie „Enable Proxy“ an und geben Sie Rechner und Port ein; beides ist erforderlich. Die nächste Suche benutzt sie.</translation>
    </message>
    <message>
        <source>The settings are in the file &lt;code&gt;Quarrynet.ini&lt;/code&gt;, in the program's folder if you can write there, otherwise in your data folder (on Linux &lt;code&gt;~/.local/share/quarrynet&lt;/code&gt;, on Windows &lt;code&gt;%APPDATA%\quarrynet&lt;/code&gt;):</source>
        <translation>Die Einstellungen stehen in der Datei &lt;code&gt;Quarrynet.ini&lt;/code&gt;, und zwar im Ordner des Programms, wenn Sie dort schreiben dürfen, sonst in Ihrem Datenordner (unter Linux &lt;code&gt;~/.local/share/quarrynet&lt;/code&gt;, unter Windows &lt;code&gt;%APPDATA%\quarrynet&lt;/code&gt;):</translation>
    </message>
    <message>
        <source>This example is the proxy of &lt;a href="services.html"&gt;the local services&lt;/a&gt;. The port must not be greater than 32767. A larger one is saved nevertheless: the program shows the file and the limit, and at its next start it does so again and ends. Correct the number in the file.</source>
        <translation>Dieses Beispiel ist der Proxy &lt;a href="services.html"&gt;der lokalen Dienste&lt;/a&gt;. Der Port darf nicht größer als 32767 sein. Ein größerer wird trotzdem gespeichert: Das Programm nennt dann die Datei und die Grenze, tut das beim nächsten Start noch einmal und beendet sich. Berichtigen Sie die Zahl in der Datei.</translation>
    </message>
    <message>
        <source>The page check does not work through a proxy; the pictures of the gallery do.</source>
        <translation>Die Seitenprüfung funktioniert nicht über einen Proxy, die Bilder der Galerie schon.</translation>
    </message>
</context>
<context>
    <name>services.html</name>
    <message>
        <source>The local services - Quarrynet manual</source>
        <translation>Die lokalen Dienste - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Searches need services. By default these run on your own machine: the program &lt;code&gt;quarrynet-services&lt;/code&gt;. An installed one is started by the system when a search asks for it; in a source tree, &lt;code&gt;./run.sh&lt;/code&gt; starts it together with the window. It answers from data on your machine, so everything works without the internet:</source>
        <translation>Suchen brauchen Dienste. Normalerweise laufen diese auf Ihrem eigenen Rechner: das Programm &lt;code&gt;quarrynet-services&lt;/code&gt;. Ein installiertes startet das System, wenn eine Suche danach fragt; in einem Quellverzeichnis startet &lt;code&gt;./run.sh&lt;/code&gt; es zusammen mit dem Fenster. Es antwortet aus den Daten Ihres Rechners, daher funktioniert alles ohne Internet:</translation>
    </message>
    <message>
        <source>tab</source>
        <translation>Registerkarte</translation>
    </message>
    <message>
        <source>searches</source>
        <translation>durchsucht</translation>
    </message>
    <message>
        <source>address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>the home pages of all packages, and the installed documentation</source>
        <translation>die Webseiten aller Pakete und die installierte Dokumentation</translation>
    </message>
    <message>
        <source>the installed pictures and icons</source>
        <translation>die installierten Bilder und Symbole</translation>
    </message>
    <message>
        <source>the programs in the package lists</source>
        <translation>die Programme in den Paketlisten</translation>
    </message>
    <message>
        <source>the files of the package pool, servers that were crawled, and files in packages</source>
        <translation>die Dateien des Paketbestands, eingelesene Server und Dateien in Paketen</translation>
    </message>
    <message>
        <source>They all listen on port 80, and together as an HTTP proxy on 127.0.0.1, port 8780.</source>
        <translation>Alle sind auf Port 80 erreichbar und gemeinsam als HTTP-Proxy auf 127.0.0.1, Port 8780.</translation>
    </message>
    <message>
        <source>What they find</source>
        <translation>Was sie finden</translation>
    </message>
    <message>
        <source>The web, image and download searches find entries that contain all your words, and entries whose name or title begins with them. Words in double quotes are a phrase; a word with "-" before it must not occur.</source>
        <translation>Die Web-, Bilder- und Download-Suche finden Einträge, die alle Ihre Wörter enthalten, und Einträge, deren Name oder Titel damit beginnt. Wörter in doppelten Anführungszeichen sind eine Wortfolge; ein Wort mit „-“ davor darf nicht vorkommen.</translation>
    </message>
    <message>
        <source>The file search finds names that contain every word.</source>
        <translation>Die Dateisuche findet Namen, die jedes Wort enthalten.</translation>
    </message>
    <message>
        <source>The exact name comes first, then names that begin with your text, then the rest. In the download search, documentation, data and similar packages follow the programs that they belong to.</source>
        <translation>Zuerst kommt der genaue Name, dann folgen Namen, die mit Ihrem Text beginnen, dann der Rest. In der Download-Suche stehen Pakete mit Dokumentation, Daten und Ähnlichem hinter den Programmen, zu denen sie gehören.</translation>
    </message>
    <message>
        <source>The web search shows each address once, even if several packages have it as their home page.</source>
        <translation>Die Websuche zeigt jede Adresse nur einmal, auch wenn mehrere Pakete sie als Webseite haben.</translation>
    </message>
    <message>
        <source>Search for the address of a directory in the file search to list its contents.</source>
        <translation>Suchen Sie in der Dateisuche nach der Adresse eines Ordners, um seinen Inhalt aufzulisten.</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>Befehle</translation>
    </message>
    <message>
        <source>indexes the machine again, takes up to several minutes</source>
        <translation>erfasst den Rechner neu, dauert bis zu einigen Minuten</translation>
    </message>
    <message>
        <source>adds a server's files to the file search</source>
        <translation>nimmt die Dateien eines Servers in die Dateisuche auf</translation>
    </message>
    <message>
        <source>answers until it is stopped</source>
        <translation>antwortet, bis es beendet wird</translation>
    </message>
    <message>
        <source>"Error #: 10061" means that no service is listening. &lt;code&gt;quarrynet-services status&lt;/code&gt; says what is indexed, since when, what answers, and what to do about the rest.</source>
        <translation>„Error #: 10061“ bedeutet, dass kein Dienst erreichbar ist. &lt;code&gt;quarrynet-services status&lt;/code&gt; sagt, was im Index steht, seit wann, was antwortet und was gegen das Übrige zu tun ist.</translation>
    </message>
    <message>
        <source>Installed services are started by the system when a search asks for them: &lt;code&gt;sudo systemctl enable --now quarrynet-services.socket&lt;/code&gt;</source>
        <translation>Installierte Dienste startet das System, sobald eine Suche sie braucht: &lt;code&gt;sudo systemctl enable --now quarrynet-services.socket&lt;/code&gt;</translation>
    </message>
    <message>
        <source>Services of your own work without the system's: &lt;code&gt;systemctl --user enable --now quarrynet-services.socket&lt;/code&gt;; then switch &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; on and enter 127.0.0.1 and 8781. Ask for their status with &lt;code&gt;quarrynet-services status --port 8781 --proxy-port 8781&lt;/code&gt;.</source>
        <translation>Eigene Dienste laufen auch ohne die des Systems: &lt;code&gt;systemctl --user enable --now quarrynet-services.socket&lt;/code&gt;; dann schalten Sie &lt;a href="proxy.html"&gt;den Proxy&lt;/a&gt; ein und geben 127.0.0.1 und 8781 ein. Ihren Zustand zeigt &lt;code&gt;quarrynet-services status --port 8781 --proxy-port 8781&lt;/code&gt;.</translation>
    </message>
    <message>
        <source>Services that you start in a terminal need permission for port 80; they print the command. Without it, switch the proxy on and use port 8780.</source>
        <translation>Dienste, die Sie in einem Terminal starten, brauchen eine Berechtigung für Port 80; sie nennen den Befehl dafür. Ohne sie schalten Sie den Proxy ein und benutzen Port 8780.</translation>
    </message>
    <message>
        <source>On Windows</source>
        <translation>Unter Windows</translation>
    </message>
    <message>
        <source>The services run on Linux only. A Windows computer uses those of a Linux machine through their proxy:</source>
        <translation>Die Dienste laufen nur unter Linux. Ein Windows-Rechner benutzt die eines Linux-Rechners über deren Proxy:</translation>
    </message>
    <message>
        <source>Start the services on the Linux machine.</source>
        <translation>Starten Sie die Dienste auf dem Linux-Rechner.</translation>
    </message>
    <message>
        <source>On Windows, open a tunnel to that machine, and keep it open. Nobody else can use it.</source>
        <translation>Öffnen Sie unter Windows einen Tunnel zu diesem Rechner und lassen Sie ihn offen. Niemand sonst kann ihn benutzen.</translation>
    </message>
    <message>
        <source>Choose View &amp;gt; Proxy, tick "Enable Proxy", and enter 127.0.0.1 and 8780.</source>
        <translation>Wählen Sie View &amp;gt; Proxy, kreuzen Sie „Enable Proxy“ an, und geben Sie 127.0.0.1 und 8780 ein.</translation>
    </message>
    <message>
        <source>In a network where everybody may search the Linux machine's index, no tunnel is needed: start the services with &lt;code&gt;quarrynet-services serve --proxy-address ADDRESS&lt;/code&gt;, where ADDRESS is the machine's own in that network, and enter that address and 8780 as the proxy.</source>
        <translation>In einem Netzwerk, in dem alle den Index des Linux-Rechners durchsuchen dürfen, ist kein Tunnel nötig: Starten Sie die Dienste mit &lt;code&gt;quarrynet-services serve --proxy-address ADDRESS&lt;/code&gt;, wobei ADDRESS die Adresse des Rechners in diesem Netzwerk ist, und geben Sie diese Adresse und 8780 als Proxy ein.</translation>
    </message>
    <message>
        <source>Other services</source>
        <translation>Andere Dienste</translation>
    </message>
    <message>
        <source>The settings file &lt;code&gt;Quarrynet.ini&lt;/code&gt; can name the hosts of other services with the same page layouts. It lies beside the program if that folder is writable, otherwise in your data folder. A missing or empty line keeps the default; the program reads the file when it starts. Each host must answer on port 80.</source>
        <translation>Die Einstellungsdatei &lt;code&gt;Quarrynet.ini&lt;/code&gt; kann die Rechner anderer Dienste nennen, deren Seiten gleich aufgebaut sind. Sie liegt neben dem Programm, wenn dieser Ordner beschreibbar ist, sonst in Ihrem Datenordner. Fehlt eine Zeile oder ist sie leer, gilt die Voreinstellung; das Programm liest die Datei beim Start. Jeder Rechner muss auf Port 80 antworten.</translation>
    </message>
</context>
<context>
    <name>web.html</name>
    <message>
        <source>Search The Internet - Quarrynet manual</source>
        <translation>Search The Internet - Handbuch zu Quarrynet</translation>
    </message>
    <message>
        <source>Finds web addresses for your keywords and shows them with a short description, thirty per page.</source>
        <translation>Findet Webadressen zu Ihren Suchbegriffen und zeigt sie mit einer kurzen Beschreibung, dreißig pro Seite.</translation>
    </message>
    <message>
        <source>A web search for a text editor</source>
        <translation>Eine Websuche nach einem Texteditor</translation>
    </message>
    <message>
        <source>&lt;b&gt;Pages Found&lt;/b&gt; is the number of results that the service reports, &lt;b&gt;Search Speed&lt;/b&gt; the time that it reports.</source>
        <translation>&lt;b&gt;Pages Found&lt;/b&gt; ist die Anzahl der Ergebnisse, die der Dienst meldet, &lt;b&gt;Search Speed&lt;/b&gt; die Dauer, die er meldet.</translation>
    </message>
    <message>
        <source>Double-click a row to open its address in your browser. To open several rows together, select them (Ctrl or Shift and click) and double-click one of them or press Enter; Ctrl+C copies them.</source>
        <translation>Doppelklicken Sie auf eine Zeile, um ihre Adresse im Browser zu öffnen. Um mehrere Zeilen zusammen zu öffnen, wählen Sie sie aus (Klick mit Strg oder Umschalt) und doppelklicken Sie auf eine davon oder drücken Sie die Eingabetaste; Strg+C kopiert sie.</translation>
    </message>
    <message>
        <source>Copy, save, sort and filter the rows as &lt;a href="index.html#lists"&gt;in all lists&lt;/a&gt;. A text that its column cuts off is shown completely when the mouse rests on it.</source>
        <translation>Kopieren, speichern, sortieren und filtern Sie die Zeilen wie &lt;a href="index.html#lists"&gt;in allen Listen&lt;/a&gt;. Ein Text, den seine Spalte abschneidet, wird ganz gezeigt, wenn die Maus darauf ruht.</translation>
    </message>
    <message>
        <source>"No site found for that keyword/s" means that the service has no results, or that it answered in an unknown layout.</source>
        <translation>„No site found for that keyword/s“ bedeutet, dass der Dienst keine Ergebnisse hat oder dass seine Antwort einen unbekannten Aufbau hat.</translation>
    </message>
</context>
</TS>
