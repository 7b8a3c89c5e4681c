' Tag report: every keyword, and the files that bear it.

Sub Main(args() As String)
  Dim query As New MDQueryQTX("kMDItemKeywords == '*'")
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  Dim files As New Dictionary
  Dim tags() As String
  For Each item As MDItemQTX In query.Results
    For Each tag As String In item.AttributeStringArray(MDItemQTX.kMDItemKeywords)
      If Not files.HasKey(tag) Then
        Dim none() As String
        files.Value(tag) = none
        tags.Append(tag)
      End If
      Dim names() As String = files.Value(tag)
      names.Append(item.FSName)
    Next
  Next

  tags.Sort
  For Each tag As String In tags
    Dim names() As String = files.Value(tag)
    names.Sort
    Print tag + ": " + Join(names, ", ")
  Next
End Sub

' It prints:
'   Cornwall: holiday.png
'   engine: letter.txt, minutes.txt
'   private: letter.txt
'   sea: holiday.png
