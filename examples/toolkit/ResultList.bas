' A list that follows a live query. Each result keeps its row; what is the same file is found by the query itself, never by
' its name or place, which can change.

Class ResultList
  Dim Items() As MDItemQTX

  ' Everything that the query has found, for the beginning of the list.
  Sub Fill(query As MDQueryQTX)
    Items = query.Results
  End Sub

  ' Call it from Update. Gives what happened to the rows, one line each, in the order in which to do it on a screen.
  Function Follow(query As MDQueryQTX, added() As MDItemQTX, changed() As MDItemQTX) As String()
    Dim steps() As String
    For row As Integer = Items.UBound DownTo 0
      If query.IndexOfResult(Items(row)) = -1 Then
        Items.Remove(row)
        steps.Append("remove " + Str(row))
      End If
    Next
    For Each item As MDItemQTX In changed
      Dim row As Integer = RowOf(item)
      If row >= 0 Then steps.Append("redraw " + Str(row))
    Next
    For Each item As MDItemQTX In added
      If RowOf(item) = -1 Then
        Items.Append(item)
        steps.Append("insert " + Str(Items.UBound))
      End If
    Next
    Return steps
  End Function

  ' Two objects are one result when their handles are the same.
  Function RowOf(item As MDItemQTX) As Integer
    For row As Integer = 0 To Items.UBound
      If Items(row).Handle = item.Handle Then Return row
    Next
    Return -1
  End Function
End Class
