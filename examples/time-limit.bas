' A time limit: what was found within a minute.

Class TextSearch
  Inherits TimedSearch

  Sub Done()
    Print Str(Self.ResultCount) + " texts"
    If Not IsComplete Then Print "The minute was over before everything was found."
  End Sub
End Class

Dim Texts As TextSearch

Sub Main(args() As String)
  Texts = New TextSearch("kMDItemContentTypeTree == 'public.text'")
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  Texts.SetSearchScope(folders, noNames)
  If Not Texts.Start(60000) Then Print "The search could not be started."
End Sub

' It prints:
'   5 texts
