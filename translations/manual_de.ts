<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>index.html</name>
    <message>
        <source>Quarrynet - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The proxy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The local services</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quarrynet is one window with five search tabs. Type what you are looking for, press Enter, and double-click a result to open it in your desktop's default program.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The window as it starts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What all tabs share</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter, or the Search button</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>starts the search. The button stays grey until the response is complete. If you type something else meanwhile, the button becomes available again, and a new search replaces the old one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Escape, the Stop menu or the red button</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>cancels the search of the current tab; the other tabs continue theirs. The Specific File Search is the exception: there, Stop empties the list, but the search continues and fills the list when its response arrives. A download search that is still running is cancelled instead.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The slider below the results</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>requests another page. It becomes available when there is more than one page, and covers ten pages at a time; at its right end it moves on by nine. Drag it, click beside the thumb, or use the arrow keys. It does not move back to earlier pages by itself: to see the first ones again, repeat the search. The slider starts at page 1 again only if the service reports no page beyond its left end.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The status bar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>shows the connection on the left ("Connecting", "Connected", "Closed") and the step of the search on the right ("Requesting Data", "Downloading Data").</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Run one search at a time for a reliable result. All tabs share one receive buffer, so the responses of two simultaneous searches can mix.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When nothing answers</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The searches need services, which are programs of their own. A box with "Error #:" means that none answered:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>meaning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>what to do</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no service is running at the address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>on Linux, start &lt;a href="services.html"&gt;the local services&lt;/a&gt;; on Windows, where there are none, use &lt;a href="services.html#windows"&gt;those of a Linux machine&lt;/a&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>there is no computer of this name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>correct the name in the file &lt;code&gt;Quarrynet.ini&lt;/code&gt; (&lt;a href="services.html#others"&gt;other services&lt;/a&gt;) or of &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the computer is out of reach</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>check the network and the address; where only a proxy leads out, switch &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; on</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Words</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Spaces before and after your words are ignored, and a space between two words is sent as "+". Everything else is sent as typed. Each service decides what the words mean; see &lt;a href="services.html"&gt;the local services&lt;/a&gt; for theirs.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Everything in the window, text included, grows and shrinks with the window. The smallest size is half the initial size. If your desktop's font is too large for the initial window, the window uses a smaller one.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>downloads.html</name>
    <message>
        <source>Search For Downloads - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finds programs for your keywords and shows their name, description, operating system, size and license, 25 per page.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Programs for chess</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Double-click a program to download it. Quarrynet first asks the download site for the real address, which takes a moment; a small box says so and closes by itself. The address then opens in your browser.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>If the site names no address, its front page opens instead.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>files.html</name>
    <message>
        <source>Specific File Search - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finds files and directories on servers by their name, or by a part of it, twenty per page.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Files whose names hold the typed text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Double-click a row to open its address. The address of a mirror usually begins with "http" and opens in your browser; that of a crawled server begins with "ftp". Many browsers no longer support FTP, but file managers and FTP programs do.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>"&amp;lt;Dir&amp;gt;" in the size column marks a directory.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>"No more site found" means that you are past the last page.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>images.html</name>
    <message>
        <source>Image Search - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finds pictures for your keywords and shows up to ten thumbnails per page. Click a thumbnail to open the full picture in your browser.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A gallery of pictures</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The gallery is a page in the program's folder. A browser engine shows it, and starts when you first open this tab. If the engine is missing, cannot start in its sandbox (as for root) or hangs on a page, a plain view shows the same thumbnails and says why.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The view is locked down: it loads nothing but thumbnails (PNG, JPEG, GIF and WebP), runs no scripts, stores nothing, and has no menus.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Through a proxy, the slider of the first tab chooses the page of results.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>page.html</name>
    <message>
        <source>Specific Page Search - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checks whether your keywords occur in the text of a page, given its address. HTML tags and letter case are ignored, and a word is also found inside a longer one: "apple" is in "pineapple".</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Three words on one page, one of them missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>shows a row for each word, "Found" or "Not Found".</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>shows a row for each word if all words occur, otherwise one row that says so.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>looks for the whole text as typed, as one phrase.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address may begin with "http://" or not; such a page is fetched from port 80 without encryption. A page whose address begins with "https://" is fetched from port 443 over TLS 1.2 or later. Addresses that name another port cannot be checked, and redirects are not followed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The certificate of an https server must be valid, issued for the server's name, and issued by an authority that your system trusts. Otherwise nothing is sent, and the error box says what is wrong:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error #</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meaning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the certificate has expired or is not valid yet; check your clock, too</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the certificate is for another name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the certificate is self-signed, or its issuer is unknown to your system</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the certificate is invalid in another way, or revoked</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the server demands a certificate of its clients</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the server does not speak TLS, or only versions before 1.2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the connection was cut, so part of the page may be missing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no TLS library is installed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter in the address field moves to the keywords; Enter there starts the search.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>While &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; is on, this tab opens no connection, and the Search button stays grey after a click. Stop then does nothing, because there is no connection to close. Switch the proxy off and type something to get the button back.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>proxy.html</name>
    <message>
        <source>The proxy - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose View &amp;gt; Proxy, or the first button of the toolbar, to send the searches through an HTTP proxy. Tick "Enable Proxy" and enter host and port; both are required. The next search uses them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings are in the file &lt;code&gt;Quarrynet.ini&lt;/code&gt;, in the program's folder if you can write there, otherwise in your data folder (on Linux &lt;code&gt;~/.local/share/quarrynet&lt;/code&gt;, on Windows &lt;code&gt;%APPDATA%\quarrynet&lt;/code&gt;):</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This example is the proxy of &lt;a href="services.html"&gt;the local services&lt;/a&gt;. The port must not be greater than 32767. A larger one is saved nevertheless: the program shows the file and the limit, and at its next start it does so again and ends. Correct the number in the file.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The page check does not work through a proxy; the pictures of the gallery do.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>services.html</name>
    <message>
        <source>The local services - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Searches need services. By default these run on your own machine: &lt;code&gt;./run.sh&lt;/code&gt; starts the program &lt;code&gt;quarrynet-services&lt;/code&gt; together with the window. It answers from data on your machine, so everything works without the internet:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>tab</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>searches</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>address</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the home pages of all packages, and the installed documentation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the installed pictures and icons</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the programs in the package lists</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the files of the package pool, and FTP servers that were crawled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>They all listen on port 80, and together as an HTTP proxy on 127.0.0.1, port 8780.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What they find</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The web, image and download searches find entries that contain all your words, and entries whose name or title begins with them. Words in double quotes are a phrase; a word with "-" before it must not occur.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file search finds names that contain every word.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The exact name comes first, then names that begin with your text, then the rest. In the download search, documentation, data and similar packages follow the programs that they belong to.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The web search shows each address once, even if several packages have it as their home page.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search for the address of a directory in the file search to list its contents.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Commands</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>indexes the machine again, takes some seconds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>adds a server's files to the file search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>answers until it is stopped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>"Error #: 10061" means that no service is listening: start the services. They need permission for port 80, which &lt;code&gt;./run.sh&lt;/code&gt; requests; without it, switch &lt;a href="proxy.html"&gt;the proxy&lt;/a&gt; on and use port 8780.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On Windows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The services run on Linux only. A Windows computer uses those of a Linux machine through their proxy:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start the services on the Linux machine.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On Windows, open a tunnel to that machine, and keep it open. Nobody else can use it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose View &amp;gt; Proxy, tick "Enable Proxy", and enter 127.0.0.1 and 8780.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In a network where everybody may search the Linux machine's index, no tunnel is needed: start the services with &lt;code&gt;quarrynet-services serve --proxy-address ADDRESS&lt;/code&gt;, where ADDRESS is the machine's own in that network, and enter that address and 8780 as the proxy.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Other services</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file &lt;code&gt;Quarrynet.ini&lt;/code&gt; can name the hosts of other services with the same page layouts. It lies beside the program if that folder is writable, otherwise in your data folder. A missing or empty line keeps the default; the program reads the file when it starts. Each host must answer on port 80.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>web.html</name>
    <message>
        <source>Search The Internet - Quarrynet manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finds web addresses for your keywords and shows them with a short description, thirty per page.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A web search for a text editor</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;b&gt;Pages Found&lt;/b&gt; is the number of results that the service reports, &lt;b&gt;Search Speed&lt;/b&gt; the time that it reports.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Double-click a row to open its address in your browser. To open several rows together, select them (Ctrl or Shift and click) and double-click one of them or press Enter; Ctrl+C copies them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>"No site found for that keyword/s" means that the service has no results, or that it answered in an unknown layout.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
