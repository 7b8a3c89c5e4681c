' Attributes of one file: the well-known ones by their own methods, then the names of all that it has.

Sub Main(args() As String)
  ShowFile(SpecialFolder.Documents.Child("letter.txt"))
End Sub

Sub ShowFile(file As FolderItem)
  Dim item As MDItemQTX
  Try
    item = New MDItemQTX(file)
  Catch problem As NilObjectException
    ' There is no such file, or the system cannot describe it.
    Print problem.Message
    Return
  End Try

  ' Every file has these.
  Print item.DisplayName
  Print "  in the file system: " + item.FSName
  Print "  path:               " + item.Path
  Print "  bytes:              " + Str(item.FSSize)

  ' One text, empty when the file lacks it.
  Print "  kind:               " + item.AttributeString(MDItemQTX.kMDItemKind)

  ' A list of texts, an empty array when the file lacks it.
  For Each author As String In item.AttributeStringArray(MDItemQTX.kMDItemAuthors)
    Print "  author:             " + author
  Next

  ' A number. Dates are no numbers: asking for one like this would raise a RuntimeException.
  Dim seconds As Double = item.AttributeDouble(MDItemQTX.kMDItemDurationSeconds)
  If seconds > 0 Then
    Print "  plays for:          " + Str(seconds) + " seconds"
  End If

  ' A date, in GMT. Nil when the file lacks it.
  Dim value As Variant = item.GetAttribute(MDItemQTX.kMDItemContentModificationDate)
  If value <> Nil Then
    Dim modified As Date = value
    Print "  last changed:       " + Str(modified.Year) + "-" + Str(modified.Month) + "-" + Str(modified.Day) + " (GMT)"
  End If

  ' Everything there is, with the names that people see.
  For Each name As String In item.AttributeNames
    Dim title As String = MDItemQTX.DisplayNameForAttribute(name)
    If title = "" Then
      title = name
    End If
    Print "  has: " + title
  Next
End Sub

' It prints:
'   letter.txt
'     in the file system: letter.txt
'     path:               ~/Documents/letter.txt
'     bytes:              32
'     kind:               Plain text document
'     author:             Ada Lovelace
'     last changed:       2014-6-30 (GMT)
'     has: File name
'     has: Name
'     has: Path
'     has: Size
'     has: Owner
'     has: Group
'     has: Exists
'     has: Readable
'     has: Writeable
'     has: Created
'     has: Content created
'     has: Added
'     has: Modified
'     has: Content modified
'     has: Attributes changed
'     has: Last opened
'     has: Custom icon
'     has: Extension hidden
'     has: Stationery
'     has: Invisible
'     has: Label
'     has: Content type
'     has: Content type tree
'     has: Kind
'     has: Keywords
'     has: Title
'     has: Authors
