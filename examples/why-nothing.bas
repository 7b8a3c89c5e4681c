' Why is nothing found? The toolkit's answers to four searches that find nothing.

Sub Ask(expression As String, folder As FolderItem)
  Dim query As New MDQueryQTX(expression)
  Dim folders() As FolderItem = Array(folder)
  Dim noNames() As String
  If query.Handle <> 0 Then
    query.SetSearchScope(folders, noNames)
    If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then Print "The query could not be run."
  End If
  Print expression + ": " + WhyNothing.Reason(query, folder)
End Sub

Sub Main(args() As String)
  Ask("kMDItemFSName = letter", SpecialFolder.Documents)
  Ask("kMDItemFSName == 'letter'", SpecialFolder.Documents)
  Ask("kMDItemFSName == 'létter.txt'", SpecialFolder.Documents)
  Ask("kMDItemFSName == '*'", SpecialFolder.Documents.Child("Travels"))
End Sub

' It prints:
'   kMDItemFSName = letter: The expression is wrong.
'   kMDItemFSName == 'letter': No file fits.
'   kMDItemFSName == 'létter.txt': Accents can be written in one or in two characters; a d behind the text makes them not matter.
'   kMDItemFSName == '*': The folder Travels is not there.
