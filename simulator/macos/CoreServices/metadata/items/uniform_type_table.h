// The list of uniform types as data. A type stands before those that conform to it, which keeps the conformances free
// of circles.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/uniform_type.h"

namespace sim::macos {

inline constexpr UniformType kUniformTypes[] = {
    // What the others conform to.
    {"public.item", "", "", ""},
    {"public.content", "", "", ""},
    {"public.composite-content", "public.content", "", ""},
    {"public.data", "public.item", "", "Document"},
    {"public.directory", "public.item", "", ""},
    {"public.folder", "public.directory", "", "Folder"},
    {"public.volume", "public.folder", "", "Volume"},
    {"com.apple.resolvable", "", "", ""},
    {"public.symlink", "public.item com.apple.resolvable", "", "Alias"},
    {"com.apple.package", "public.directory", "", ""},
    {"com.apple.bundle", "public.directory", "", ""},
    {"public.executable", "public.item", "", ""},
    {"public.archive", "public.item", "", ""},
    {"public.disk-image", "public.archive", "", ""},
    {"public.database", "", "", ""},

    // Text.
    {"public.text", "public.data public.content", "", "Text document"},
    {"public.plain-text", "public.text", "txt text log conf cfg ini", "Plain text document"},
    {"net.daringfireball.markdown", "public.plain-text", "md markdown", "Markdown document"},
    {"public.comma-separated-values-text", "public.text", "csv", "Comma-separated values"},
    {"public.tab-separated-values-text", "public.text", "tsv tab", "Tab-separated values"},
    {"public.rtf", "public.text", "rtf", "Rich text document"},
    {"public.html", "public.text", "html htm", "HTML document"},
    {"public.xml", "public.text", "xml xsd xsl", "XML document"},
    {"public.yaml", "public.text", "yaml yml", "YAML document"},
    {"public.json", "public.text", "json", "JSON document"},
    {"public.css", "public.text", "css", "Style sheet"},
    {"com.apple.property-list", "public.data", "plist", "Property list"},

    // Programs to be.
    {"public.source-code", "public.plain-text", "", "Source code"},
    {"public.c-source", "public.source-code", "c", "C source"},
    {"public.c-header", "public.source-code", "h", "C header"},
    {"public.c-plus-plus-source", "public.source-code", "cpp cc cxx", "C++ source"},
    {"public.c-plus-plus-header", "public.source-code", "hpp hh hxx", "C++ header"},
    {"public.objective-c-source", "public.source-code", "m", "Objective-C source"},
    {"public.assembly-source", "public.source-code", "s asm", "Assembly source"},
    {"com.sun.java-source", "public.source-code", "java", "Java source"},
    {"public.patch-file", "public.text", "patch diff", "Patch"},
    {"public.script", "public.source-code", "", "Script"},
    {"public.shell-script", "public.script", "sh bash", "Shell script"},
    {"public.python-script", "public.script", "py", "Python script"},
    {"public.perl-script", "public.script", "pl pm", "Perl script"},
    {"public.ruby-script", "public.script", "rb", "Ruby script"},
    {"public.php-script", "public.script", "php", "PHP script"},
    {"com.netscape.javascript-source", "public.script", "js mjs", "JavaScript source"},

    // Pictures.
    {"public.image", "public.data public.content", "", "Image"},
    {"public.svg-image", "public.text public.image", "svg", "SVG document"},
    {"public.png", "public.image", "png", "PNG image"},
    {"public.jpeg", "public.image", "jpg jpeg jpe", "JPEG image"},
    {"public.jpeg-2000", "public.image", "jp2 j2k", "JPEG 2000 image"},
    {"com.compuserve.gif", "public.image", "gif", "GIF image"},
    {"public.tiff", "public.image", "tif tiff", "TIFF image"},
    {"com.microsoft.bmp", "public.image", "bmp", "BMP image"},
    {"com.microsoft.ico", "public.image", "ico", "Windows icon"},
    {"com.apple.icns", "public.image", "icns", "Icon image"},

    // Sound and film.
    {"public.audiovisual-content", "public.data public.content", "", ""},
    {"public.audio", "public.audiovisual-content", "", "Audio"},
    {"public.mp3", "public.audio", "mp3", "MP3 audio"},
    {"com.microsoft.waveform-audio", "public.audio", "wav", "Waveform audio"},
    {"public.aiff-audio", "public.audio", "aif aiff", "AIFF audio"},
    {"com.apple.m4a-audio", "public.audio", "m4a", "MPEG-4 audio"},
    {"org.xiph.flac", "public.audio", "flac", "FLAC audio"},
    {"org.xiph.ogg-audio", "public.audio", "ogg oga", "Ogg audio"},
    {"public.movie", "public.audiovisual-content", "", "Movie"},
    {"public.video", "public.movie", "", ""},
    {"public.mpeg", "public.movie", "mpg mpeg", "MPEG movie"},
    {"public.mpeg-4", "public.movie", "mp4", "MPEG-4 movie"},
    {"com.apple.quicktime-movie", "public.video", "mov qt", "QuickTime movie"},
    {"public.avi", "public.movie", "avi", "AVI movie"},

    // Documents.
    {"com.adobe.pdf", "public.data public.composite-content", "pdf", "PDF document"},
    {"com.adobe.postscript", "public.data", "ps", "PostScript document"},
    {"com.microsoft.word.doc", "public.data public.composite-content", "doc", "Word document"},
    {"org.openxmlformats.wordprocessingml.document", "public.data public.composite-content", "docx", "Word document"},
    {"com.microsoft.excel.xls", "public.data public.composite-content", "xls", "Spreadsheet"},
    {"org.openxmlformats.spreadsheetml.sheet", "public.data public.composite-content", "xlsx", "Spreadsheet"},
    {"org.oasis-open.opendocument.text", "public.data public.composite-content", "odt", "OpenDocument text"},
    {"org.oasis-open.opendocument.spreadsheet", "public.data public.composite-content", "ods",
     "OpenDocument spreadsheet"},
    {"org.idpf.epub-container", "public.data public.composite-content", "epub", "Electronic book"},
    {"public.font", "", "", ""},
    {"public.truetype-ttf-font", "public.data public.font", "ttf", "TrueType font"},
    {"public.opentype-font", "public.data public.font", "otf", "OpenType font"},
    {"public.email-message", "public.data public.content", "eml", "Email message"},
    {"public.vcard", "public.text", "vcf vcard", "Address card"},
    {"com.apple.ical.ics", "public.text", "ics", "Calendar"},

    // Archives.
    {"public.zip-archive", "public.data public.archive", "zip", "ZIP archive"},
    {"org.gnu.gnu-zip-archive", "public.data public.archive", "gz gzip", "Gzip archive"},
    {"org.gnu.gnu-zip-tar-archive", "org.gnu.gnu-zip-archive", "tgz", "Gzip tar archive"},
    {"public.tar-archive", "public.data public.archive", "tar", "Tar archive"},
    {"public.bzip2-archive", "public.data public.archive", "bz2", "Bzip2 archive"},
    {"org.tukaani.xz-archive", "public.data public.archive", "xz", "XZ archive"},
    {"com.apple.disk-image-udif", "public.data public.disk-image", "dmg", "Disk image"},
    {"public.iso-image", "public.data public.disk-image", "iso", "Disk image"},

    // Executables.
    {"public.unix-executable", "public.data public.executable", "", "Unix executable file"},
    {"com.apple.mach-o-binary", "public.data public.executable", "", "Mach-O binary"},
    {"com.apple.mach-o-dylib", "com.apple.mach-o-binary", "dylib", "Dynamic library"},
    {"com.apple.mach-o-object", "com.apple.mach-o-binary", "o", "Object code"},
    {"com.sun.java-archive", "public.zip-archive public.executable", "jar", "Java archive"},
    {"com.sun.java-class", "public.data public.executable", "class", "Java class"},

    // Folders that are shown as one file.
    {"com.apple.application-bundle", "com.apple.package com.apple.bundle public.executable", "app", "Application"},
    {"com.apple.framework", "com.apple.bundle", "framework", "Framework"},
    {"com.apple.generic-bundle", "com.apple.package com.apple.bundle", "bundle", "Bundle"},
    {"com.apple.plugin", "com.apple.package com.apple.bundle", "plugin", "Plug-in"},
    {"com.apple.rtfd", "com.apple.package public.composite-content", "rtfd", "Rich text with attachments"},
};

} // namespace sim::macos
