' Results as CSV: name, size and date of every text, in a file that spreadsheets read.

Function Quoted(text As String) As String
  Return """" + ReplaceAll(text, """", """""") + """"
End Function

Sub Main(args() As String)
  Dim lists() As String
  Dim order() As String = Array(MDItemQTX.kMDItemFSName)
  Dim query As New MDQueryQTX("kMDItemContentTypeTree == 'public.text'", lists, order)
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  query.SetSearchScope(folders, noNames)
  If Not query.Execute(MDQueryQTX.kMDQuerySynchronous) Then
    Print "The query could not be run."
    Return
  End If

  Dim file As FolderItem = SpecialFolder.Temporary.Child("results.csv")
  Dim out As TextOutputStream = TextOutputStream.Create(file)
  out.WriteLine("name,bytes,changed")
  For Each item As MDItemQTX In query.Results
    Dim changed As Date = item.GetAttribute(MDItemQTX.kMDItemFSContentChangeDate)
    out.WriteLine(Quoted(item.FSName) + "," + Str(item.FSSize) + "," + changed.SQLDateTime)
  Next
  out.Close

  Dim into As TextInputStream = TextInputStream.Open(file)
  While Not into.EOF
    Print into.ReadLine
  Wend
End Sub

' It prints:
'   name,bytes,changed
'   "budget 9.csv",18,2014-05-01 08:00:00
'   "budget 10.csv",20,2014-06-01 08:00:00
'   "letter.txt",32,2014-06-30 23:30:59
'   "minutes.txt",32,2014-07-02 10:00:00
'   "packing.txt",6,2014-07-04 18:00:00
