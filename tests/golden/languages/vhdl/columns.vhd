library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- <@text:anchor#overview>
entity columns is
  generic (width : positive := 12); -- <@control:slider#width [31,33] {"min":1,"max":40}>
  port (clk   : in  std_logic;
        value : in  unsigned(width - 1 downto 0);
        sum   : out unsigned(width - 1 downto 0));
end entity;

architecture rtl of columns is
  signal total : unsigned(width - 1 downto 0);
begin
  process (clk) begin
    --- <@task#sum>
    if rising_edge(clk) then
      total <= total + value; end if; -- <@output#total [6,11] {"format":"short"}>
    --- <@task#sum>
  end process;
  sum <= total;
end architecture;
-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
