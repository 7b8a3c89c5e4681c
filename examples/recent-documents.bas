' Recent documents: what was changed since a day, the newest first.

Sub Main(args() As String)
  Dim since As New Date(2014, 7, 1)
  Dim parts() As String
  parts.Append(QueryText.Since(MDItemQTX.kMDItemFSContentChangeDate, since))
  parts.Append("kMDItemContentTypeTree == 'public.data'")

  Dim lists() As String
  Dim order() As String = Array(MDItemQTX.kMDItemFSContentChangeDate)
  Dim query As New MDQueryQTX(QueryText.All(parts), lists, order)
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  ' Results are sorted upwards, so the newest are at the end.
  For i As Integer = query.ResultCount - 1 DownTo 0
    Dim changed As Date = query.AttributeValueOfResultAtIndex(MDItemQTX.kMDItemFSContentChangeDate, i)
    Print changed.SQLDateTime + "  " + query.ResultAtIndex(i).FSName
  Next
End Sub

' It prints:
'   2014-07-05 12:00:00  map.png
'   2014-07-04 18:00:00  packing.txt
'   2014-07-02 10:00:00  minutes.txt
