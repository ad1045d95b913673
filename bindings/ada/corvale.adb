with Ada.Environment_Variables;
with Ada.Finalization;
with Ada.Strings.Fixed;
with Corvale.Api;

package body Corvale is

   use type Int32;

   protected One_At_A_Time is
      entry Seize;
      procedure Release;
   private
      Is_Taken : Boolean := False;
   end One_At_A_Time;

   protected body One_At_A_Time is
      entry Seize when not Is_Taken is
      begin
         Is_Taken := True;
      end Seize;

      procedure Release is
      begin
         Is_Taken := False;
      end Release;
   end One_At_A_Time;

   pragma Warnings (Off, "variable ""Mine"" is not referenced");
   --  A turn is taken and given back by being there.

   --  Waits until no other task is in the library, for as long as the object lives.
   type Any_Turn is new Ada.Finalization.Limited_Controlled with null record;
   overriding procedure Initialize (Object : in out Any_Turn);
   overriding procedure Finalize (Object : in out Any_Turn);

   --  A turn with the library loaded.
   type Turn is new Any_Turn with null record;
   overriding procedure Initialize (Object : in out Turn);

   Is_Open : Boolean := False;

   overriding procedure Initialize (Object : in out Any_Turn) is
   begin
      One_At_A_Time.Seize;
   end Initialize;

   overriding procedure Finalize (Object : in out Any_Turn) is
   begin
      One_At_A_Time.Release;
   end Finalize;

   overriding procedure Initialize (Object : in out Turn) is
   begin
      Any_Turn (Object).Initialize;
      if not Is_Open then
         Any_Turn (Object).Finalize;
         raise Load_Error with "Corvale: the library is not loaded, call Open first";
      end if;
   end Initialize;

   --  The text in a buffer; refused when the library would not see all of it.
   function Filled (Text : String; Width : Positive) return String is
   begin
      if Text'Length > Width then
         raise Text_Error with Text'Length'Image & " characters," & Width'Image & " fit: " & Text;
      end if;
      for C of Text loop
         if C not in ' ' .. '~' then
            raise Text_Error with
              "code" & Integer'Image (Character'Pos (C)) & " is not printable ASCII: " & Text;
         end if;
      end loop;
      return Ada.Strings.Fixed.Head (Text, Width);
   end Filled;

   --  A name or message; also refused when it begins with a blank, which the library drops.
   function Filled_Unindented (Text : String; Width : Positive) return String is
   begin
      if Text'Length > 0 and then Text (Text'First) = ' ' then
         raise Text_Error with "begins with a blank:" & Text;
      end if;
      return Filled (Text, Width);
   end Filled_Unindented;

   function Trimmed (Text : String) return String is
     (Ada.Strings.Fixed.Trim (Text, Ada.Strings.Right));

   --  Within the turn of the call that failed: no other task can replace the reason.
   procedure Check (Status : Int32) is
      Reason : Text_128;
   begin
      if Status /= 0 then
         Api.GetLastErrMsg (Reason);
         raise Corvale_Error with Trimmed (Reason);
      end if;
   end Check;

   function Default_Library return String is
     (Ada.Environment_Variables.Value ("CORVALE_LIBRARY", "libCorvale.so.9"));

   procedure Open (Library : String := "") is
      Mine : Any_Turn;
   begin
      Api.Load (if Library = "" then Default_Library else Library);
      Is_Open := True;
   end Open;

   procedure Init is
      Mine : Turn;
   begin
      Check (Api.CorvaleInit.all);
   end Init;

   function Info return String is
      Mine : Turn;
      Text : Text_128;
   begin
      Api.CorvaleGetInfo (Text);
      return Trimmed (Text);
   end Info;

   function Init_Dll_Names return String is
      Mine  : Turn;
      Names : Text_512;
   begin
      Api.GetInitDllNames (Names);
      return Trimmed (Names);
   end Init_Dll_Names;

   procedure Open_Log_File (Name : String) is
      Mine : Turn;
   begin
      Check (Api.OpenLogFile (Filled_Unindented (Name, Text_512'Length)));
   end Open_Log_File;

   procedure Close_Log_File is
      Mine : Turn;
   begin
      Api.CloseLogFile.all;
   end Close_Log_File;

   procedure Log_Message (Message : String) is
      Mine : Turn;
   begin
      Api.LogMessage (Filled_Unindented (Message, Text_128'Length));
   end Log_Message;

   function Last_Err_Msg return String is
      Mine : Turn;
      Text : Text_128;
   begin
      Api.GetLastErrMsg (Text);
      return Trimmed (Text);
   end Last_Err_Msg;

   function Last_Info_Msg return String is
      Mine : Turn;
      Text : Text_128;
   begin
      Api.GetLastInfoMsg (Text);
      return Trimmed (Text);
   end Last_Info_Msg;

   function Dup_Key_Mode return Int32 is
      Mine : Turn;
   begin
      return Api.GetDupKeyMode.all;
   end Dup_Key_Mode;

   procedure Set_Dup_Key_Mode (Mode : Int32) is
      Mine : Turn;
   begin
      Check (Api.SetDupKeyMode (Mode));
   end Set_Dup_Key_Mode;

   function All_Key_Mode return Int32 is
      Mine : Turn;
   begin
      return Api.GetAllKeyMode.all;
   end All_Key_Mode;

   procedure Set_All_Key_Mode (Mode : Int32) is
      Mine : Turn;
   begin
      Check (Api.SetAllKeyMode (Mode));
   end Set_All_Key_Mode;

   procedure Reset_All_Key_Mode is
      Mine : Turn;
   begin
      Api.ResetAllKeyMode.all;
   end Reset_All_Key_Mode;

   function Elset_Key_Mode return Int32 is
      Mine : Turn;
   begin
      return Api.GetElsetKeyMode.all;
   end Elset_Key_Mode;

   procedure Set_Elset_Key_Mode (Mode : Int32) is
      Mine : Turn;
   begin
      Check (Api.SetElsetKeyMode (Mode));
   end Set_Elset_Key_Mode;

   procedure Load_File (Name : String) is
      Mine : Turn;
   begin
      Check (Api.CorvaleLoadFile (Filled_Unindented (Name, Text_512'Length)));
   end Load_File;

   function MOIC_Data (Count : Natural) return Real64_Array is
      Mine : Turn;
   begin
      return Values : Real64_Array (1 .. Count) do
         Api.GetMOICData (Int32 (Count), Values);
      end return;
   end MOIC_Data;

   function Test_Interface (From : Values) return Values is
      Mine : Turn;
   begin
      return To : Values do
         Api.TestInterface
           (From.Ch, To.Ch, From.I, To.I, From.L, To.L, From.D, To.D,
            Filled (From.Text, Text_512'Length), To.Text,
            From.I3, To.I3, From.L3, To.L3, From.D3, To.D3,
            From.I6, To.I6, From.L6, To.L6, From.D6, To.D6);
      end return;
   end Test_Interface;

   procedure Test_Interface_2 (All_Values : in out Values) is
      Mine : Turn;
      V    : Values renames All_Values;
   begin
      V.Text := Filled (V.Text, Text_512'Length);
      Api.TestInterface2 (V.Ch, V.I, V.L, V.D, V.Text, V.I3, V.L3, V.D3, V.I6, V.L6, V.D6);
   end Test_Interface_2;

   procedure Test_Interface_3
     (I3 : Int32_3; I3_Out : out Int32_3; I6 : Int32_6; I6_Out : out Int32_6)
   is
      Mine : Turn;
   begin
      Api.TestInterface3 (I3, I3_Out, I6, I6_Out);
   end Test_Interface_3;

end Corvale;
