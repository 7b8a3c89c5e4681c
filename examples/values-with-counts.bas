' The values of an attribute with their counts: how many files of each kind a folder holds.

Sub Main(args() As String)
  CountKinds(SpecialFolder.Documents)
End Sub

Sub CountKinds(folder As FolderItem)
  ' Value lists are kept only for attributes that are named when the query is made.
  Dim valueLists() As String = Array(MDItemQTX.kMDItemKind)
  Dim query As New MDQueryQTX("kMDItemFSName == '*'", valueLists)

  Dim folders() As FolderItem = Array(folder)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)

  ' Synchronously: everything is there when the call returns.
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  Dim rest As Integer = query.ResultCount
  For Each kind As Variant In query.ValuesOfAttribute(MDItemQTX.kMDItemKind)
    If kind <> Nil Then
      Dim count As UInt32 = query.CountOfResultsWithAttributeValue(MDItemQTX.kMDItemKind, kind)
      Print Str(count) + "  " + kind.StringValue
      rest = rest - count
    End If
  Next

  ' Files without the attribute have no value to be listed under.
  Print Str(rest) + "  of unknown kind"
End Sub

' It prints:
'   1  Folder
'   2  Comma-separated values
'   3  PNG image
'   3  Plain text document
'   1  MP3 audio
'   0  of unknown kind
