' Live query: watches a folder for text files and tells what comes, changes and goes.
'
' The events arrive while the main event loop runs, and only as long as the query object lives; that is why it is kept in a
' global variable. Call StopWatching when you have seen enough.

Class TextWatch
  Inherits MDQueryQTX

  ' While the query gathers. The system leaves out the added items here, so the count is what there is to tell.
  Event Progress(AddedItems() As MDItemQTX, ChangedItems() As MDItemQTX, RemovedItems() As MDItemQTX)
    Print Str(Self.ResultCount) + " files so far"
  End Event

  ' Once, when everything that is there has been found.
  Event Finish()
    Print Str(Self.ResultCount) + " files found"
    For Each item As MDItemQTX In Self.Results(20)
      Print "  " + item.Path
    Next
    Print "Watching."
  End Event

  ' From then on, whenever something happens.
  Event Update(AddedItems() As MDItemQTX, ChangedItems() As MDItemQTX, RemovedItems() As MDItemQTX)
    For Each item As MDItemQTX In AddedItems
      Print "new      " + item.Path
    Next
    For Each item As MDItemQTX In ChangedItems
      Print "changed  " + item.Path + ", now " + Str(item.FSSize) + " bytes"
    Next
    For Each item As MDItemQTX In RemovedItems
      Print "gone     " + item.Path
    Next
  End Event
End Class

Dim Watch As TextWatch

Sub Main(args() As String)
  StartWatching(SpecialFolder.Documents)
End Sub

Sub StartWatching(folder As FolderItem)
  Watch = New TextWatch("kMDItemContentTypeTree == 'public.text'")
  If Watch.Handle = 0 Then
    Print "The expression is wrong."
    Return
  End If

  Dim folders() As FolderItem = Array(folder)
  Dim noNames() As String
  Watch.SetSearchScope(folders, noNames)

  ' Report the first find at once, then in larger steps.
  Dim batching As MDQueryBatchingParamsQTX = Watch.BatchingParameters
  batching.firstMaxNum = 1
  batching.progressMaxNum = 200
  Watch.BatchingParameters = batching

  If Not Watch.Execute(MDQueryQTX.kMDQueryWantsUpdates) Then
    Print "The query could not be started."
  End If
End Sub

Sub StopWatching()
  If Watch <> Nil Then
    Watch.Stop
    Watch = Nil
  End If
End Sub

' It prints, until it is stopped:
'   1 files so far
'   5 files so far
'   5 files found
'     ~/Documents/budget 10.csv
'     ~/Documents/budget 9.csv
'     ~/Documents/letter.txt
'     ~/Documents/minutes.txt
'     ~/Documents/Travel/packing.txt
'   Watching.
