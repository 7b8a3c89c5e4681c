' Duplicates by size: files of the same kind and size are worth a closer look.

Sub Main(args() As String)
  Dim query As New MDQueryQTX("kMDItemFSSize > 0")
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  Dim groups As New Dictionary
  For Each item As MDItemQTX In query.Results
    Dim key As String = Str(item.FSSize) + " bytes, " + item.AttributeString(MDItemQTX.kMDItemContentType)
    Dim names() As String
    If groups.HasKey(key) Then names = groups.Value(key)
    names.Append(item.FSName)
    groups.Value(key) = names
  Next

  Dim found As Boolean
  For Each key As Variant In groups.Keys
    Dim names() As String = groups.Value(key)
    If names.UBound > 0 Then
      names.Sort
      Print key + ": " + Join(names, ", ")
      found = True
    End If
  Next
  If Not found Then Print Str(query.ResultCount) + " files, no two alike"
End Sub

' It prints:
'   32 bytes, public.plain-text: letter.txt, minutes.txt
